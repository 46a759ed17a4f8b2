#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "report/group_lists.h"
#include "report/page_run.h"
#include "report/shown_names.h"

namespace kiv::report {

// Every measure by every key, for each run of a page. All lists show the same number of names at
// most, lists of call paths fewer, so that all together fit. In a comparison both runs have the
// rows of the same names: what has a row in one of them only is not in the other.
struct page_lists {
  std::vector<std::vector<group_list>> runs;
  std::size_t rows = 0, path_rows = 0;            // names of the longest list, and of paths
  std::size_t longest = 0, longest_of_paths = 0;  // that they would have if none were left out
  std::size_t bytes = 0;                          // of JSON
};

// All lists with all their rows. They look into the runs and the names.
class whole_lists {
 public:
  whole_lists(const std::vector<page_run>& runs, const name_book& names);
  whole_lists(const whole_lists&) = delete;
  whole_lists& operator=(const whole_lists&) = delete;

  // With so many rows that they take at most about `budget` bytes of JSON.
  page_lists fitting(shown_names& names, std::size_t budget) const;

 private:
  // Of one measure by one key.
  struct compared_list {
    std::vector<group_list> runs;  // one for each
    // The names in the order in which they are shown as long as there is room: the largest first,
    // in a comparison in turn what changed most and what is largest. For each run its row or null.
    std::vector<std::array<const list_row*, 2>> names;
  };
  struct fit;
  static void rank(compared_list& into, const name_book& names);
  static group_list shown_part(const compared_list& from, std::size_t run, std::size_t names);
  fit rows_that_fit(bool of_paths, shown_names& names, std::size_t budget) const;

  std::size_t run_count_;
  std::vector<compared_list> lists_;
};

}  // namespace kiv::report
