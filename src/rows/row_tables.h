#pragma once

#include <string>

#include "store/sqlite.h"
#include "tables/csv_tables.h"

namespace kiv::rows {

// Makes the tables, indexes and views for rows where they are not there yet, within a transaction.
bool make_row_tables(store::database& db);

// The statements by which it does so.
std::string row_schema_sql();

// "INSERT INTO table (columns) VALUES (?, ...)" over all columns but labels, which need no storage.
std::string insert_statement(const csv_table& table);

}  // namespace kiv::rows
