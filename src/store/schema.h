#pragma once

#include <string>

namespace kiv::store {

// The statements that make the tables and views of a database.
std::string schema_sql();

}  // namespace kiv::store
