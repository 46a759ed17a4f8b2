#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kiv::store {

struct view {
  std::string_view name;
  std::string_view description;  // one line
  std::string_view select;       // with its macros expanded
};

// The views over the profiles, in alphabetical order. Each is a file of src/store/views: a comment
// line that describes it, and a SELECT. `{{name}}` stands for the macro of that name, which
// src/store/sql/macros.sql holds behind a line "-- name:".
std::span<const view> views();

// Null when there is no such view.
const view* find_view(std::string_view name);

}  // namespace kiv::store
