#include "clickhouse/row_schema.h"

#include <algorithm>

#include "clickhouse/literals.h"
#include "tables/csv_tables.h"

namespace kiv::clickhouse {
namespace {

bool has_column(const csv_table& table, std::string_view name) {
  return std::ranges::find(table.columns, name, &csv_column::name) != table.columns.end();
}

row_table make(const csv_table& table) {
  row_table made;
  made.name = table.name;
  made.stored = made.name + "_stored";
  made.create = "CREATE TABLE IF NOT EXISTS " + made.stored + " (\n  run String,\n  import Int64";
  made.select = "SELECT run AS run_id";
  for (const auto& column : table.columns.subspan(1)) {
    const std::string name(column.name);
    if (!column.label.empty()) {
      made.select += ", " + text_literal(column.label) + " AS " + name;
      continue;
    }
    const bool is_number = column.type == column_type::i64 || column.type == column_type::u64;
    made.create += ",\n  " + name + (is_number ? " Int64" : " String");
    made.select += ", " + name;
  }
  std::string key = "run, import";
  for (const std::string_view name : {"main_pid", "rec", "record", "alloc_rec"}) {
    if (has_column(table, name)) key += ", " + std::string(name);
  }
  made.create += "\n) ENGINE = MergeTree PARTITION BY sipHash64(run) % 16 ORDER BY (" + key + ")";
  made.select += "\nFROM " + made.stored + "\nWHERE import IN (SELECT import FROM newest_import)";
  return made;
}

}  // namespace

std::span<const row_table> row_tables() {
  static const auto all = [] {
    std::vector<row_table> made;
    for (const auto& table : csv_tables()) made.push_back(make(table));
    return made;
  }();
  return all;
}

}  // namespace kiv::clickhouse
