#pragma once

#include <cstdint>
#include <string_view>

#include "support/trace_builder.h"

namespace kiv::bench {

// The traces that the benchmarks replay. Each is the same on every machine and in every run.

// `records` memory records, 400 by 400 in random order: 193 'a', 175 'f', 16 'r', 16 'n'; so 8.5 %
// of them are live at the end. 20 processes that are scheduled every 40 records and stand in calls,
// 200 ids of 8 colours, 1,500 source locations, a time stamp every 100 records. A block is freed at
// any age, and its address is handed out again.
test::trace memory_heavy(std::uint32_t records);

// `records` records, nine in ten of them function entries and exits: 20 processes walk up and down
// a call graph of 50 objects with 40 functions, each of which calls 8 others. The tenth record is
// an allocation or its free, every 400th record schedules another process.
test::trace flow_heavy(std::uint32_t records);

// `records` records of one type, after whatever they need to be ordinary ones (a free needs its
// block, an exit its entry). With `all` false those records are left out: what a record costs is
// the difference between the two. For 'F' and 'Z' each id holds `blocks` live blocks.
test::trace one_type(char tag, std::uint32_t records, bool all, std::uint32_t blocks = 0);

}  // namespace kiv::bench
