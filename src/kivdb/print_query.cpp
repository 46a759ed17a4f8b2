#include "kivdb/print_query.h"

#include <array>
#include <ostream>
#include <string_view>

namespace kiv::db {
namespace {

using report::column_kind;

constexpr std::size_t rows_for_people = 100;

// How a column reads for people, by its name.
column_kind kind_of(std::string_view name) {
  constexpr std::array<std::string_view, 6> counts = {"blocks", "resizes", "records",
                                                      "count",  "growths", "traces"};
  if (name.ends_with("bytes")) return column_kind::bytes;
  if (name.ends_with("bytes_change")) return column_kind::change;
  for (const auto count : counts) {
    if (name == count || (name.ends_with(count) && name[name.size() - count.size() - 1] == '_')) {
      return column_kind::count;
    }
  }
  return column_kind::plain;
}

report::cell cell_of(const store::row_cursor& rows, int column) {
  switch (rows.type(column)) {
    case store::value_type::null:
      return {};
    case store::value_type::integer:
      return rows.integer(column);
    case store::value_type::real:
      return rows.real(column);
    case store::value_type::text:
    case store::value_type::blob:
      break;
  }
  return std::string(rows.text(column));
}

report::table_row row_of(const store::row_cursor& rows) {
  report::table_row cells;
  for (int i = 0; i < rows.columns(); ++i) cells.push_back(cell_of(rows, i));
  return cells;
}

// A column reads as a number when the first row has one there.
std::vector<report::column> columns_of(const store::row_cursor& rows,
                                       const report::table_row& first) {
  std::vector<report::column> columns;
  for (int i = 0; i < rows.columns(); ++i) {
    const std::string name(rows.name(i));
    const bool is_text =
        !first.empty() && std::holds_alternative<std::string>(first[static_cast<std::size_t>(i)]);
    columns.push_back({name, name, is_text ? column_kind::text : kind_of(name)});
  }
  return columns;
}

}  // namespace

bool print_query(std::ostream& out, store::row_cursor& rows, const report::print_style& style,
                 std::optional<std::size_t> top) {
  const bool for_people = style.format == report::output_format::terminal;
  const std::size_t limit = top.value_or(for_people ? rows_for_people : SIZE_MAX);
  bool more = rows.step();
  if (rows.failed()) return false;
  report::table_row next = more ? row_of(rows) : report::table_row();
  report::table_printer table(out, columns_of(rows, next), style);
  for (std::size_t count = 0; more && count < limit; ++count) {
    table.add(next);
    more = rows.step();
    if (more) next = row_of(rows);
  }
  table.finish();
  if (for_people && more) out << "... and more (--top, --csv, --json)\n";
  return !rows.failed();
}

}  // namespace kiv::db
