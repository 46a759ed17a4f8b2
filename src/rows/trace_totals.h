#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "profile/run_profile.h"
#include "rows/record_sequence.h"
#include "rows/run_reading.h"

namespace kiv::rows {

// Adds up, per trace, what the rows of `memory`, `freemem` and `sbrk` say, and compares it with
// profiles of the same traces.
class trace_totals {
 public:
  // Takes a row of a table. False, with the reading's error set, when it cannot follow the last
  // one.
  bool add(run_reading& reading, std::string_view table, const table_rows& rows);

  // Empty when every profile of a trace agrees; else what differs.
  std::string compare(const run_profile& run) const;

 private:
  struct totals {
    std::uint64_t records = 0, made = 0, live_bytes = 0, heap_bytes = 0;
    std::uint64_t freed = 0, with_id = 0, reset = 0;
  };
  bool add_memory(run_reading& reading, const table_rows& rows);

  std::map<std::int64_t, totals> traces_;
  record_sequence sequence_;
};

}  // namespace kiv::rows
