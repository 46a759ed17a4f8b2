#pragma once

#include <string>
#include <vector>

#include "util/sql_views.h"

namespace kiv::server {

// Scripts in the dialect of SQL Server, made from the catalogue of the tables and the views.
std::string tsql_tables();      // the database, its tables and indexes
std::string tsql_procedures();  // the two procedures that the scripts of kiv call
std::string tsql_views();

// The views over rows as they are written down, in an order in which each uses earlier ones only.
// SQLite reads them too; for the server "||" becomes "+".
std::vector<sql_view> views();

}  // namespace kiv::server
