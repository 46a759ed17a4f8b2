#include "rows/record_sequence.h"

namespace kiv::rows {

bool record_sequence::accept(std::int64_t main_pid, std::uint64_t record, bool resize_without_block,
                             std::string& reason) {
  const std::string of_trace = " of the trace with the process id " + std::to_string(main_pid);
  is_new_trace_ = seen_.empty() || main_pid != main_pid_;
  if (is_new_trace_) {
    if (!seen_.insert(main_pid).second) {
      reason = "more records" + of_trace + " behind those of another trace";
      return false;
    }
    main_pid_ = main_pid;
    last_ = 0;
  }
  const std::uint64_t expected = resize_without_block ? last_ : last_ + 1;
  if (record == expected) {
    last_ = record;
    return true;
  }
  if (record > expected) {
    reason = "record " + std::to_string(expected) + of_trace + " is missing";
  } else if (record <= 1) {
    reason = "record " + std::to_string(record) + of_trace +
             " again: two traces have that process id, or a file is there twice";
  } else {
    reason = "record " + std::to_string(record) + of_trace + " again";
  }
  return false;
}

}  // namespace kiv::rows
