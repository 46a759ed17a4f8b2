#include "rows/separators.h"

#include <algorithm>

#include "rows/row_parser.h"
#include "util/decimal.h"

namespace kiv::rows {
bool starts_with_time(std::string_view text) {
  constexpr std::string_view shape = "dddd-dd-dd dd:dd:dd.ddd";
  static_assert(shape.size() == time_length);
  return text.size() >= shape.size() &&
         std::equal(shape.begin(), shape.end(), text.begin(),
                    [](char s, char c) { return s == 'd' ? is_digit(c) : s == c; });
}

std::optional<char> detect_data_separator(std::string_view row) {
  for (std::size_t at = 3; at + time_length <= row.size(); ++at) {
    if (!is_digit(row[at]) || !starts_with_time(row.substr(at))) continue;
    const char separator = row[at - 1];
    std::size_t number = at - 1;
    while (number > 0 && is_digit(row[number - 1])) --number;
    if (number == at - 1 || !usable_separator(separator)) continue;
    if (number > 0 && row[number - 1] == separator) return separator;
    if (number > 1 && row[number - 1] == '-' && row[number - 2] == separator) return separator;
  }
  return std::nullopt;
}

std::optional<char> detect_fun_separator(std::string_view row, const csv_table& table,
                                         char data_separator) {
  const auto joined = std::ranges::find(table.columns, true, &csv_column::joined_to_next);
  if (joined == table.columns.end()) return std::nullopt;
  row_parser parser(table, {data_separator, data_separator});
  const auto index = static_cast<std::size_t>(joined - table.columns.begin());
  auto pair = parser.from_column(row, index);
  if (!pair) return std::nullopt;
  const auto separator = std::ranges::find_if_not(*pair, is_digit);
  if (separator == pair->begin() || separator == pair->end()) return std::nullopt;
  return *separator;
}

}  // namespace kiv::rows
