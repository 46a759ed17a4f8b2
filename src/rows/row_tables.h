#pragma once

#include <string>

namespace kiv::rows {

// The statements that make the tables, indexes and views for rows in a database where they are not
// there yet.
std::string row_schema_sql();

}  // namespace kiv::rows
