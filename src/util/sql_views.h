#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "util/embedded_text.h"

namespace kiv {

// A view as it is written down: a file with a comment line that describes it, and a SELECT.
struct sql_view {
  std::string_view name;         // of the file, without a number and '_' in front
  std::string_view description;  // one line
  std::string select;            // with its macros expanded
};

// Reads views in the order of their files. `{{name}}` in a SELECT, or in a macro, stands for the
// macro of that name; the text `macros` holds each behind a line "-- name:".
std::vector<sql_view> read_sql_views(std::span<const embedded_text> files, std::string_view macros);

// Empty when there is no such file.
std::string_view find_text(std::span<const embedded_text> files, std::string_view name);

}  // namespace kiv
