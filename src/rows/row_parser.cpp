#include "rows/row_parser.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "util/decimal.h"
#include "util/printable.h"

namespace kiv::rows {
namespace {

// More surplus separators than this are no longer taken for part of a text.
constexpr std::ptrdiff_t max_surplus = 64;

// Reads a decimal number. Null when there is none or it does not fit.
const char* read_number(const char* at, const char* end, bool is_signed, std::int64_t& value) {
  const bool negative = is_signed && at != end && *at == '-';
  if (negative) ++at;
  const char* first = at;
  std::uint64_t sum = 0;
  for (; at != end && is_digit(*at); ++at) {
    const auto digit = static_cast<std::uint64_t>(*at - '0');
    // Nineteen digits always fit.
    if (at - first >= 19 && sum > (std::numeric_limits<std::uint64_t>::max() - digit) / 10) {
      return nullptr;
    }
    sum = sum * 10 + digit;
  }
  if (at == first) return nullptr;
  if (is_signed && sum > (std::uint64_t{1} << 63) - !negative) return nullptr;
  value = static_cast<std::int64_t>(negative ? 0 - sum : sum);
  return at;
}

const char* find_or_end(const char* at, const char* end, char wanted) {
  const void* found = std::memchr(at, wanted, static_cast<std::size_t>(end - at));
  return found ? static_cast<const char*>(found) : end;
}

bool has_nul(std::string_view text) { return text.find('\0') != std::string_view::npos; }

}  // namespace

row_parser::row_parser(const csv_table& table, separators seps)
    : data_separator_(seps.data), fields_(table.columns.size()) {
  for (const auto& column : table.columns) {
    plan_.push_back({&column, column.joined_to_next ? seps.fun : seps.data});
    has_inner_free_text_ |=
        column.type == column_type::free_text && &column != &table.columns.back();
  }
}

bool row_parser::fail(std::size_t column, std::string_view what, std::string_view value) {
  reason_ = "column " + std::to_string(column + 1) + " (" +
            std::string(plan_[column].column->name) + "): " + std::string(what);
  if (value.data()) reason_ += " '" + printable(value.substr(0, 40)) + '\'';
  return false;
}

// Reads one column into `fields_`. Null when it is not of its type; else behind its last byte,
// where its end character or the row's end must stand.
const char* row_parser::read(std::size_t column, const char* at, const char* end) {
  const csv_column& c = *plan_[column].column;
  field& f = fields_[column];
  const char* stop = at;
  switch (c.type) {
    case column_type::i64:
    case column_type::u64:
      stop = read_number(at, end, c.type == column_type::i64, f.number);
      if (!stop) fail(column, "not a number:", {at, find_or_end(at, end, plan_[column].end)});
      return stop;
    case column_type::time:
      if (!starts_with_time({at, end})) {
        fail(column, "not a time:", {at, find_or_end(at, end, plan_[column].end)});
        return nullptr;
      }
      stop = at + time_length;
      // Nanoseconds of a second or more, as a damaged trace may have them, make it longer.
      if (stop != end && *stop >= '0' && *stop <= '9') ++stop;
      break;
    case column_type::character:
      if (at == end) {
        fail(column, "no character");
        return nullptr;
      }
      stop = at + 1;
      break;
    case column_type::text:
    case column_type::free_text:
      if (!c.label.empty()) {  // whole, since a label may hold the separator
        if (!std::string_view(at, end).starts_with(c.label)) {
          fail(column, "not the label '" + std::string(c.label) + "':",
               {at, find_or_end(at, end, plan_[column].end)});
          return nullptr;
        }
        stop = at + c.label.size();
        break;
      }
      stop = column + 1 == plan_.size() && c.type == column_type::free_text
                 ? end
                 : find_or_end(at, end, plan_[column].end);
      if (has_nul({at, stop})) {
        fail(column, "NUL byte in a text");
        return nullptr;
      }
      break;
  }
  f.text = {at, stop};
  return stop;
}

bool row_parser::parse(std::string_view row) {
  const char* at = row.data();
  const char* end = at + row.size();
  const std::size_t last = plan_.size() - 1;
  for (std::size_t i = 0; i <= last; ++i) {
    const char* stop = read(i, at, end);
    if (!stop) break;
    if (i == last) {
      if (stop == end) return true;
      fail(i, *stop == data_separator_ ? "more columns follow" : "not its end:", {stop, end});
      break;
    }
    if (stop == end) {
      return fail(i + 1, "missing, the row ends before it");
    }
    if (*stop != plan_[i].end) {
      fail(i, "not its end:", {stop, end});
      break;
    }
    at = stop + 1;
  }
  return has_inner_free_text_ && parse_with_separators_in_texts(row);
}

std::optional<std::string_view> row_parser::from_column(std::string_view row, std::size_t wanted) {
  const char* at = row.data();
  const char* end = at + row.size();
  for (std::size_t i = 0; i < wanted; ++i) {
    at = read(i, at, end);
    if (!at || at == end || *at != plan_[i].end) return std::nullopt;
    ++at;
  }
  return std::string_view(at, end);
}

// Counts, up to two, the ways to read the row from a column on, leaving the first in `trial_`.
int row_parser::count_readings(std::size_t column, const char* at, const char* end) {
  const bool is_last = column + 1 == plan_.size();
  const bool is_free = plan_[column].column->type == column_type::free_text;
  const char* stop = read(column, at, end);
  if (is_last) {
    if (stop != end) return 0;
    if (trial_.empty()) trial_ = fields_;
    return 1;
  }
  int readings = 0;
  while (stop && stop != end && *stop == plan_[column].end && readings < 2) {
    fields_[column].text = {at, stop};
    readings += count_readings(column + 1, stop + 1, end);
    if (!is_free) break;
    stop = find_or_end(stop + 1, end, plan_[column].end);
    if (has_nul({at, stop})) break;
  }
  return readings;
}

bool row_parser::parse_with_separators_in_texts(std::string_view row) {
  const auto separators_in_row = std::count(row.begin(), row.end(), data_separator_);
  const auto columns = static_cast<std::ptrdiff_t>(plan_.size());
  if (separators_in_row >= columns + max_surplus) return false;
  const std::string reason = reason_;
  trial_.clear();
  const int readings = count_readings(0, row.data(), row.data() + row.size());
  if (readings == 1) {
    fields_.swap(trial_);
    return true;
  }
  reason_ = readings == 0 ? reason
                          : "a text holds the separator, and the row can be read in several ways";
  return false;
}

}  // namespace kiv::rows
