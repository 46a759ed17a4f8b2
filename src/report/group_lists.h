#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "profile/run_profile.h"
#include "report/group_filter.h"
#include "report/measures.h"
#include "report/name_book.h"

namespace kiv::report {

// A trace whose names are entered in a name book, with the groups that a filter leaves.
struct named_trace {
  const profile* trace = nullptr;
  place_numbers numbers;
  std::vector<bool> kept;  // for each group
};

// The traces of a run. They look into `run`, which must outlive them.
std::vector<named_trace> named_traces(const run_profile& run, const group_filter& filter,
                                      name_book& names);

// Where the groups of a trace are found in `numbers` for a key.
std::uint32_t number_of(const named_trace& trace, const group_names& group, group_key key);

struct list_row {
  std::uint32_t name = 0;  // number in the name book
  split_amount sum;
};

// Sums by name. Where there are very many names most have none, and those take four bytes each.
class list_sums {
 public:
  // By the numbers 0 to `names` - 1.
  explicit list_sums(std::size_t names);

  split_amount& operator[](std::uint32_t name) {
    if (row_of_.empty()) return rows_[name].sum;
    std::uint32_t& row = row_of_[name];
    if (row == 0) {
      rows_.push_back({name, {}});
      row = static_cast<std::uint32_t>(rows_.size());
    }
    return rows_[row - 1].sum;
  }
  // Those that were asked for, in some order, and perhaps others.
  const std::vector<list_row>& rows() const { return rows_; }

 private:
  std::vector<std::uint32_t> row_of_;  // from 1 on, 0: none; empty where every name has a row
  std::vector<list_row> rows_;
};

// The sums over the kept groups.
struct group_sums {
  struct of_trace {
    group_figures with_free, no_free;
  };
  std::vector<of_trace> traces;
  std::vector<list_sums> lists;  // of a measure by a key, for each choice
};
group_sums sum_up(const std::vector<named_trace>& traces, const name_book& names,
                  const std::vector<list_choice>& choices);
// The sums of one measure by one key, for each number of a name.
std::vector<split_amount> sums_by(const std::vector<named_trace>& traces, const name_book& names,
                                  group_key key, measure of);

// What is behind one measure, by one key: most bytes first, then most blocks, then by name. Names
// without any block are left out.
struct group_list {
  group_key by = group_key::line;
  measure of = measure::leaked;
  split_amount total;  // of all rows, those left out included
  std::vector<list_row> rows;
  std::size_t left_out = 0;  // rows beyond `top`
  split_amount left_out_sum;
};

std::vector<group_list> make_lists(const group_sums& sums, const name_book& names,
                                   const std::vector<list_choice>& choices,
                                   std::optional<std::size_t> top);

}  // namespace kiv::report
