#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace kiv {

// What a column's values look like. `free_text` is text that the traced program or its user chose
// and that may well hold a separator. `time` is local time, "2023-11-14 22:13:20.005".
enum class column_type : std::uint8_t { text, free_text, i64, u64, character, time };

// What a number counts or names. `record` is a record number, `id` any other identifying number.
enum class column_unit : std::uint8_t { none, bytes, count, record, id, address };

// The tables, in the order in which a trace creates their files.
enum class table_id : std::uint8_t {
  memory,
  sbrk,
  queryevents,
  marker,
  freemem,
  arena,
  arcs,
  symbols,
  flowdata,
  flow,
  process,
  hashloc,
  malid,
  color,
  queries,
  runs,
  objects,
  functions,
};
inline constexpr std::size_t table_count = 18;

struct csv_column {
  std::string_view name;  // unique within its table, snake_case
  column_type type;
  column_unit unit;
  std::string_view meaning;  // one line

  // The constant text of a label column such as "malid" in `memory`; empty for every other column.
  std::string_view label = {};
  // fun_sep, not data_sep, stands between this column and the next. With the default separators
  // both are ';' and a row has one field per column; otherwise the two columns are one field.
  bool joined_to_next = false;
};

// When a trace creates the file: before the replay, or after it when its book is written.
enum class table_created : std::uint8_t { with_reader, at_end };

// What follows the last column: a line end, or the marker below and a line end. The last column of
// a table with the marker may itself hold separators and line ends.
enum class row_end : std::uint8_t { line, marker };
inline constexpr std::string_view row_end_marker = "<<>>";

struct csv_table {
  table_id id;
  std::string_view name;  // as in the file name and in the import script
  table_created created;
  bool split_by_size;
  row_end end;
  std::string_view meaning;  // one line: what a row is
  std::span<const csv_column> columns;
};

// All eighteen tables, in the order of their ids.
std::span<const csv_table> csv_tables();
inline const csv_table& describe(table_id table) {
  return csv_tables()[static_cast<std::size_t>(table)];
}

// Null when there is no such table.
const csv_table* find_csv_table(std::string_view name);

std::string_view to_text(column_type type);
std::string_view to_text(column_unit unit);

}  // namespace kiv
