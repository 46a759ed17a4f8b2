#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "report/group_filter.h"
#include "report/name_book.h"
#include "report/page_groups.h"
#include "report/page_histograms.h"
#include "report/page_lists.h"
#include "report/page_run.h"
#include "report/page_timeline.h"
#include "report/run_report.h"
#include "report/shown_names.h"

namespace kiv::report {

struct page_options {
  filter_options filter = {};
  std::string version = {};  // of the program
  // Bytes of JSON, about. What is known of each trace as a whole, some 1,200 bytes, is always
  // there.
  std::size_t budget = 900'000;
};

// What of a page had to be made to fit. Names are as `shown` has them.
struct page_content {
  std::unique_ptr<shown_names> shown;
  page_lists lists;
  page_groups groups;
  page_timelines timelines;
  page_marks marks;
  page_histograms histograms;
};

// What a page shows of one run, or of two that are compared: sums are exact, and what is small is
// put together where all of it would take too much room. It looks into the runs, which must outlive
// it.
struct page_data {
  page_options options;
  name_book names;
  std::vector<page_run> runs;
  std::vector<std::vector<trace_figures>> figures;
  page_content content;               // looks into `names`
  std::vector<std::string> left_out;  // in sentences, what was put together or cut
};

// Of one run or two. False, with `error` set, when a filter's expression cannot be read or no run
// has such a process.
bool make_page_data(const std::vector<const run_profile*>& runs, const page_options& options,
                    page_data& into, std::string& error);

}  // namespace kiv::report
