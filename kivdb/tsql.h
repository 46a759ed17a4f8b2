#pragma once

#include <string>

namespace kiv::db {

// Scripts in the dialect of SQL Server, made from the catalogue of the tables and the views.
std::string tsql_tables();      // the database, its tables and indexes
std::string tsql_procedures();  // the two procedures that the scripts of kiv call
std::string tsql_views();

}  // namespace kiv::db
