#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/trace_builder.h"

namespace kiv::test {

// Traces told into a builder, which decides byte order, widths and files. All addresses, locations
// and symbols are below 2^31, so that a story means the same in four and in eight bytes.

// stories_memory.cpp: blocks, allocation ids, the heap.
void blocks_with_and_without_free(trace& t);
void resized_blocks(trace& t);
void blocks_of_several_processes(trace& t);
void freed_and_reset_ids(trace& t);
void reservation_texts(trace& t);
void far_ids_and_colors(trace& t);
void heap_gaps_and_arena(trace& t);

// stories_code.cpp: processes, call flow, symbols.
void processes_start_run_and_end(trace& t);
void calls_and_arcs(trace& t);
void many_callees(trace& t);
void replaced_specials(trace& t);
void late_announcements(trace& t);
void objects_that_were_never_loaded(trace& t);
void calls_outside_of_processes(trace& t);
void hosk_calls(trace& t);
void symbols_by_flow(trace& t);

// stories_trace.cpp: the run, time, markers, SQL, and all of it at once.
void run_and_source_lines(trace& t);
void times_and_markers(trace& t);
void sql_brackets(trace& t);
void every_record_type_once(trace& t);

// stories_damage.cpp: what a broken writer or a lost beginning leaves. All of it can be read.
void nothing_announced(trace& t);
void announced_twice(trace& t);
void numbers_of_nothing(trace& t);
void illegal_addresses(trace& t);
void totals_that_differ(trace& t);
void impossible_values(trace& t);
void records_out_of_sync(trace& t);

struct story {
  std::string_view name;
  std::function<void(trace&)> tell;
  // What it is about: tables, and of the streams stdout, stderr, or
  // messages: stdout without the lines that announce files,
  // records: stderr from the first data file on.
  std::vector<std::string_view> about = {};
  std::vector<std::string> args = {};
};

const std::vector<story>& clean_stories();
const std::vector<story>& damaged_stories();

// Some hundred plausible operations and a few impossible ones. No address is handed out twice and
// no process number is used again.
void random_operations(trace& t, std::uint32_t seed, int operations = 400);

}  // namespace kiv::test
