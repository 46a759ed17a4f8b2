#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "profile/amount.h"
#include "profile/block_groups.h"

namespace kiv {

// The lists below hold names; groups of blocks refer to them by their place. Two entries never have
// the same name, but for processes, which have a pid too. Place 0 is always the one for "none" or
// "unknown".
struct profile_id {
  std::uint32_t number = 0;  // 0 and "unknown id" at place 0
  std::string name;          // means the same in every run: category, description
  std::string reserve_type;
};
struct profile_color {
  std::uint32_t id = 0;  // place in ids
  std::uint32_t number = 0;
  std::string name;  // "unknown colour" at place 0
};
struct profile_function {
  std::string object;
  std::string name;
};
struct profile_process {
  std::uint32_t pid = 0;
  std::string name;  // "default process" at place 0
};

// A node of the call tree: a function called along the path of its parent. Place 0 is the empty
// path. Parents come before their children.
struct call_path {
  std::uint32_t parent = 0;
  std::uint32_t function = 0;  // place in functions
};

// How many blocks were made with a size, or ended after so many memory records, from 2^exponent up
// to the next power; exponent -1 stands for 0.
enum class distribution : std::uint8_t { size, lifetime };
struct histogram_bar {
  distribution of = distribution::size;
  bool no_free = false;
  std::uint32_t id = 0;  // place in ids
  std::int32_t exponent = 0;
  std::uint64_t blocks = 0;
  std::uint64_t bytes = 0;
};

// Growth of the heap, or gaps in it, while a process stood in a call path.
struct heap_change {
  bool gap = false;
  std::uint32_t path = 0;
  std::uint32_t process = 0;
  std::uint64_t count = 0;
  std::int64_t bytes = 0;
};

// Live memory of an allocation id that differs from that of the step or mark before.
struct id_level {
  std::uint32_t id = 0;  // place in ids
  std::uint64_t bytes = 0;
};

// Some memory records that follow one another.
struct timeline_step {
  std::uint64_t last_record = 0;
  std::string time;                 // of the last record, local
  std::uint64_t highest_bytes = 0;  // live memory
  std::uint64_t last_bytes = 0;
  std::uint64_t heap_bytes = 0;   // growth so far
  std::vector<id_level> changed;  // live memory at the last record, where it changed
};

// A marker of the traced program.
struct program_mark {
  std::uint64_t record = 0;
  std::string time;
  std::string text;
  std::uint64_t live_bytes = 0;
  std::uint64_t live_blocks = 0;
  std::vector<id_level> changed;
};

// What keeps a trace from being complete.
struct loss {
  std::string what;
  std::uint64_t count = 0;
  std::string first;  // where the first one was, in words; may be empty
};

struct peak_figures {
  amount live;
  std::uint64_t record = 0;  // 0: nothing was ever live
  std::string time;
};

// What was learned from one trace: of one header.
struct profile {
  std::string run;
  std::int64_t pid = 0;
  std::string program, environment, account, host, user, description;
  std::string start, end;     // local time, "2023-11-14 22:13:20.005"
  std::uint64_t records = 0;  // memory records booked
  std::uint64_t heap_bytes = 0;
  std::int64_t gap_bytes = 0;
  bool from_rows = false;  // computed from CSV tables: no call paths, no losses known
  peak_figures peak;
  std::vector<loss> losses;        // empty: complete
  std::vector<std::string> notes;  // what was left out to bound memory

  std::vector<profile_id> ids;
  std::vector<profile_color> colors;
  std::vector<std::string> lines;  // "unknown line" at place 0
  std::vector<profile_function> functions;
  std::vector<call_path> paths;
  bool paths_differ = false;  // whether it is known that no two of them are alike
  std::vector<profile_process> processes;
  std::vector<std::string> queries;  // "(no finished SQL operation)" at place 0

  block_groups groups;
  std::vector<histogram_bar> histograms;
  std::vector<heap_change> heap;
  std::vector<timeline_step> timeline;  // at most 1,000
  std::vector<program_mark> marks;

  bool complete() const { return losses.empty() && !from_rows; }
};

}  // namespace kiv
