#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kiv::db {

// A way to group blocks. For each key K there are the views by_K, peak_by_K and churn_by_K.
struct view_key {
  std::string name;                  // id, color, line, arc, process or query
  std::string title;                 // what a row stands for
  std::vector<std::string> columns;  // of block_groups, to group by
  std::string extra;  // further aggregates that the names need, with a comma behind each
  std::string names;  // columns that name the group, taken from the grouped row `t`
  std::vector<std::string> stable_names;  // those of them that mean the same in another run
};

const std::vector<view_key>& view_keys();

// Null when there is no such key.
const view_key* find_view_key(std::string_view name);

// A subquery for one name of the row `t`. It yields at most one row, so that a name which was
// announced twice never doubles a figure.
std::string lookup(const std::string& expression, const std::string& table,
                   const std::string& condition);

// Columns that name the process, and the caller and callee of the arc, of the row `t`.
std::string process_name();
std::string arc_names();

}  // namespace kiv::db
