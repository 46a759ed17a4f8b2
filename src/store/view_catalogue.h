#pragma once

#include <span>
#include <string_view>

#include "util/sql_views.h"

namespace kiv::store {

// The views over the profiles, in alphabetical order: the files of src/store/views, with the macros
// of src/store/sql/macros.sql.
std::span<const sql_view> views();

// Null when there is no such view.
const sql_view* find_view(std::string_view name);

}  // namespace kiv::store
