#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "report/group_lists.h"
#include "report/page_run.h"
#include "report/shown_names.h"

namespace kiv::report {

// Every measure by every key, for each run of a page. All lists have the same number of rows at
// most, lists of call paths fewer, so that all together fit.
struct page_lists {
  std::vector<std::vector<group_list>> runs;
  std::size_t rows = 0, path_rows = 0;  // of the longest list, and of the longest one of paths
  std::size_t longest = 0, longest_of_paths = 0;  // that they would have if none were left out
  std::size_t bytes = 0;                          // of JSON
};

// All rows.
std::vector<std::vector<group_list>> all_lists(const std::vector<page_run>& runs,
                                               const name_book& names);

// Leaves so many rows that the lists take at most about `budget` bytes of JSON.
page_lists fitting_lists(std::vector<std::vector<group_list>> lists, shown_names& names,
                         std::size_t budget);

}  // namespace kiv::report
