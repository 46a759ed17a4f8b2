#pragma once

#include <string>

#include "tables/csv_tables.h"
#include "store/sqlite.h"

namespace kiv::rows {

// Makes the tables, indexes and views for rows where they are not there yet, within a transaction.
bool make_row_tables(store::database& db);

// "INSERT INTO table (columns) VALUES (?, ...)" over all columns but labels, which need no storage.
std::string insert_statement(const csv_table& table);

}  // namespace kiv::rows
