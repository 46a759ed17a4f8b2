#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "profile/run_profile.h"
#include "report/group_filter.h"
#include "report/group_lists.h"
#include "report/measures.h"
#include "report/name_book.h"

namespace kiv::report {

// The figures of one trace, of the blocks that the filter leaves.
struct trace_figures {
  const profile* trace = nullptr;
  split_amount allocated, freed, leaked, reset, released, live, at_peak, temporary;
  std::size_t processes = 0;  // that announced themselves
  std::size_t ids = 0;
};

trace_figures figures_of(const named_trace& trace, const group_sums::of_trace& sums);

struct report_options {
  std::vector<list_choice> lists = {};
  std::optional<std::size_t> top = {};  // rows of a list; none: all
  filter_options filter = {};
};

// Every measure by every key. Where one of them is empty: leaked, peak and temporary; id, line and
// path. Where both are and `for_people`, what answers the three usual questions on a few pages.
std::vector<list_choice> chosen_lists(std::vector<group_key> by, std::vector<measure> of,
                                      bool for_people);

// A report, computed and not yet printed. It looks into the run, which must outlive it.
struct run_report {
  const run_profile* run = nullptr;
  filter_options filter = {};
  bool complete = false;   // all traces are
  bool from_rows = false;  // one of them was computed from CSV tables
  std::vector<trace_figures> traces;
  name_book names;
  std::vector<group_list> lists;
  // For each number of a process: the process ids under which the name stands, ascending.
  std::vector<std::vector<std::uint32_t>> process_ids;
};

// Whether every trace of the run is complete, and there is one.
bool is_complete(const run_profile& run);

// False, with `error` set, when a filter's expression cannot be read or the run has no such
// process.
bool make_report(const run_profile& run, const report_options& options, run_report& into,
                 std::string& error);

}  // namespace kiv::report
