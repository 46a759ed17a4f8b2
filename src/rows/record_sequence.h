#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace kiv::rows {

// Checks that the rows of `memory` are those of whole traces, one after another: the records of
// each are 1, 2, 3 ... A resize that found no block repeats the number of the record before it.
class record_sequence {
 public:
  // False, with `reason` set, when the row cannot follow the last one.
  bool accept(std::int64_t main_pid, std::uint64_t record, bool resize_without_block,
              std::string& reason);

  // Of the last row.
  std::int64_t main_pid() const { return main_pid_; }
  bool is_new_trace() const { return is_new_trace_; }

 private:
  std::set<std::int64_t> seen_;
  std::int64_t main_pid_ = 0;
  std::uint64_t last_ = 0;
  bool is_new_trace_ = false;
};

}  // namespace kiv::rows
