#pragma once

#include <span>
#include <string>
#include <string_view>

#include "util/sql_views.h"

namespace kiv::store {

// The views over the profiles, in alphabetical order: the files of src/store/views, with the macros
// of src/store/sql/macros.sql.
std::span<const sql_view> views();

// Null when there is no such view.
const sql_view* find_view(std::string_view name);

// The SELECT of a view for one run alone, whose name is the parameter ?1.
std::string select_of_one_run(const sql_view& view);

}  // namespace kiv::store
