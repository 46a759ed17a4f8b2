#pragma once

#include <array>
#include <string>
#include <string_view>

#include "tables/csv_names.h"
#include "tables/csv_tables.h"

namespace kiv {

// Numbers the CSV files of a run. Numbers are kept per table, whatever the run id, and run on
// across all traces of the run.
class csv_file_sequence {
 public:
  int curr_sequence(table_id table) const { return numbers_[static_cast<std::size_t>(table)]; }
  void go_on(table_id table) { ++numbers_[static_cast<std::size_t>(table)]; }
  // The name of the table's current file.
  std::string get_sequence(table_id table, std::string_view runid) const {
    return make_csv_name(runid, describe(table).name, std::to_string(curr_sequence(table)));
  }

 private:
  std::array<int, table_count> numbers_ = [] {
    std::array<int, table_count> first{};
    first.fill(1);
    return first;
  }();
};

}  // namespace kiv
