#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "profile/run_profile.h"
#include "report/group_filter.h"
#include "report/measures.h"
#include "report/name_book.h"
#include "report/table.h"

namespace kiv::report {

struct tree_options {
  measure of = measure::peak;
  double min_share = 1;  // percent of the total that a call must hold, itself and what it calls
  filter_options filter = {};
};

// A function called along a path: what was allocated in it and in all that it called, and what in
// itself.
struct tree_row {
  std::uint32_t path = 0;   // number in the name book
  std::uint32_t depth = 0;  // 0: the outermost function
  amount inclusive, self;
};

// Call paths as a tree, computed and not yet printed. It looks into the run, which must outlive it.
struct call_tree {
  const run_profile* run = nullptr;
  tree_options options;
  name_book names;
  amount total;
  std::vector<tree_row> rows;  // callers before callees, of these the largest first
  std::uint64_t left_out = 0;  // calls below the share
  amount left_out_sum;         // what was allocated in themselves
};

// False, with `error` set, when a filter's expression cannot be read or the run has no such
// process.
bool make_tree(const run_profile& run, const tree_options& options, call_tree& into,
               std::string& error);

void print_tree(std::ostream& out, const call_tree& tree, const print_style& style);

}  // namespace kiv::report
