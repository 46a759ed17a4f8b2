#pragma once

#include <optional>
#include <string_view>

#include "tables/csv_tables.h"

namespace kiv::rows {

// The characters that kiv was told to put between columns (-sd) and inside a joined pair (-sf).
struct separators {
  char data = ';';
  char fun = ';';
};

// True when the 23 bytes at the start of `text` read like "2023-11-14 22:13:20.005".
bool starts_with_time(std::string_view text);
inline constexpr std::size_t time_length = 23;

// A digit between columns cannot be told from the numbers around it.
inline bool usable_separator(char c) { return c < '0' || c > '9'; }

// Reads off a row what stands around its first time text, which has only a number before it in
// every table that this is used for. Nothing when the row has no such place.
std::optional<char> detect_data_separator(std::string_view row);

// Reads off a row of a table with joined columns what stands inside the first pair.
std::optional<char> detect_fun_separator(std::string_view row, const csv_table& table,
                                         char data_separator);

}  // namespace kiv::rows
