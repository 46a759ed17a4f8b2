#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "store/row_cursor.h"
#include "store/sqlite.h"

namespace kiv::store {

// Prepares one reading statement with texts for its '?'. Null, with `error` set, when it is
// another or SQLite does not understand it. The database must outlive the rows.
std::unique_ptr<row_cursor> prepare_query(database& db, std::string_view sql,
                                          std::vector<std::string> texts, std::string& error);

}  // namespace kiv::store
