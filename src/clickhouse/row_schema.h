#pragma once

#include <span>
#include <string>
#include <vector>

namespace kiv::clickhouse {

// A CSV table on the server: where loads write its rows, and the view that shows those of the
// newest loads with the columns of the catalogue.
struct row_table {
  std::string name, stored;
  std::string create;  // the table
  std::string select;  // the view
};

// The eighteen tables.
std::span<const row_table> row_tables();

}  // namespace kiv::clickhouse
