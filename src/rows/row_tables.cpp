#include "rows/row_tables.h"

#include <span>
#include <string_view>

#include "tables/csv_tables.h"
#include "util/embedded_text.h"

namespace kiv {
std::span<const embedded_text> row_schema();
}

namespace kiv::rows {
namespace {

std::string_view sqlite_type(column_type type) {
  return type == column_type::i64 || type == column_type::u64 ? "INTEGER" : "TEXT";
}

std::string create_table(const csv_table& table) {
  std::string sql = "CREATE TABLE IF NOT EXISTS " + std::string(table.name) + " (";
  std::string_view separator = "\n";
  for (const auto& column : table.columns) {
    sql += separator;
    sql += "  " + std::string(column.name) + ' ' + std::string(sqlite_type(column.type));
    sql += column.label.empty() ? std::string(" NOT NULL")
                                : " AS ('" + std::string(column.label) + "') VIRTUAL";
    separator = ",\n";
  }
  return sql + "\n);\nINSERT OR IGNORE INTO row_table VALUES ('" + std::string(table.name) +
         "');\n";
}

}  // namespace

std::string row_schema_sql() {
  std::string sql;
  for (const auto& table : csv_tables()) sql += create_table(table);
  for (const auto& file : row_schema()) sql += file.text;
  return sql;
}

}  // namespace kiv::rows
