#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "report/table.h"
#include "store/row_cursor.h"

namespace kiv::db {

// Prints the rows of a query, at most `top` of them; for people, who are told when there are more,
// 100 unless told. Rows go out one by one, however many there are. False when reading failed.
bool print_query(std::ostream& out, store::row_cursor& rows, const report::print_style& style,
                 std::optional<std::size_t> top);

}  // namespace kiv::db
