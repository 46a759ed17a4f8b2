#pragma once

#include <cstdint>

namespace kiv {

// Set by the command line only, read everywhere.
extern int debug_level;  // 0 silent, 1 progress (-d), 2 every record listed (-D)
extern char data_sep;    // between the columns of every CSV row (-sd)
extern char fun_sep;     // between object and function where both form one column (-sf)

// Counters that run on across all traces of one program run; nothing resets them.
struct run_counters {
  std::uint32_t record_count = 0;       // raised by the event loop per a, n, f, r, F and Z record
  std::uint32_t rec_sbrk_count = 0;     // raised by each row of `sbrk`
  std::uint32_t rec_arena_count = 0;    // raised by each row of `arena`
  std::uint32_t marker_cnt = 0;         // raised by each row of `marker`
  std::uint64_t last_record_count = 0;  // memory records booked when the last marker was written
};

extern run_counters counters;

}  // namespace kiv
