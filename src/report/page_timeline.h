#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "profile/profile.h"
#include "report/page_run.h"
#include "report/shown_names.h"

namespace kiv::report {

// Live memory of a trace over its steps, in bytes.
struct page_timeline {
  std::vector<std::uint64_t> records;  // the last one of each step
  std::vector<std::string> times;
  std::vector<std::uint64_t> highest, last, heap;
  std::vector<std::uint32_t> ids;  // with the highest levels: numbers of the name book
  std::vector<std::vector<std::uint64_t>> levels;  // for each of the ids, at the steps' ends
};

// The timelines of all traces, by run and trace. Where they would take too much room, some steps
// become one and fewer ids are told apart.
struct page_timelines {
  std::vector<std::vector<page_timeline>> runs;
  std::size_t most_steps = 0, most_ids = 0;  // of a trace
  std::size_t recorded_steps = 0;            // of the longest timeline, before
  std::size_t shortened = 0;                 // traces of which steps became one
  std::size_t bytes = 0;                     // of JSON
};
page_timelines fitting_timelines(const std::vector<page_run>& runs, std::size_t budget);

// The markers of the traced programs. Where they are too many, some of each trace at even
// distances.
struct page_marks {
  std::vector<std::vector<std::vector<program_mark>>> runs;  // by trace
  std::size_t shown = 0, all = 0;
  std::size_t bytes = 0;  // of JSON
};
page_marks fitting_marks(const std::vector<page_run>& runs, shown_names& names, std::size_t budget);

}  // namespace kiv::report
