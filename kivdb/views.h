#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kiv::db {

struct view {
  std::string name;
  std::string description;  // one line
  std::string select;       // read by both SQLite and SQL Server, where "||" becomes "+"
  // In SQLite a table that every import fills for its run, since it takes a pass over all rows.
  bool stored = false;
};

// All views, in an order in which each uses earlier ones only.
const std::vector<view>& views();

// Null when there is no such view.
const view* find_view(std::string_view name);

}  // namespace kiv::db
