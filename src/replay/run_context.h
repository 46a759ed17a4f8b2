#pragma once

#include <cstdint>

namespace kiv {

class diagnostics;

// Counters that run on across all traces of one run; nothing resets them.
struct run_counters {
  std::uint32_t record_count = 0;       // a, n, f, r, F and Z records
  std::uint32_t rec_sbrk_count = 0;     // S and G records
  std::uint32_t rec_arena_count = 0;    // M records
  std::uint32_t marker_cnt = 0;         // rows of `marker`
  std::uint64_t last_record_count = 0;  // memory records booked when the last marker was written
};

// What the traces of one run share. Two runs in one process have nothing else in common.
struct run_context {
  explicit run_context(diagnostics& all_faults) : faults(all_faults) {}

  diagnostics& faults;
  char data_sep = ';';  // between the columns of every CSV row
  char fun_sep = ';';   // between object and function where both form one column
  run_counters counters;
};

}  // namespace kiv
