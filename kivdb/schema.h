#pragma once

#include <span>
#include <string>
#include <string_view>

#include "tables/csv_tables.h"

namespace kiv::db {

// An index of a table. It covers `included`, so that the views need not touch the wide rows.
struct table_index {
  std::string_view name;
  std::string_view table;
  std::string_view keys;
  std::string_view included;
};
std::span<const table_index> indexes();

// Statements that create the tables, indexes and views in SQLite.
std::string sqlite_schema();

// "INSERT INTO table (columns) VALUES (?, ...)" over all columns but labels, which need no storage.
std::string insert_statement(const csv_table& table);

}  // namespace kiv::db
