#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "profile/run_profile.h"
#include "report/group_filter.h"
#include "report/growth_limit.h"
#include "report/measures.h"
#include "report/name_book.h"
#include "report/table.h"

namespace kiv::report {

struct diff_options {
  group_key by = group_key::line;
  measure of = measure::leaked;
  std::optional<std::size_t> top = {};  // rows; none: all
  filter_options filter = {};
  std::vector<growth_limit> limits = {};
  bool allow_incomplete = false;  // judge runs that are not complete too
};

struct compared_amounts {
  amount a, b;
  std::int64_t change() const { return static_cast<std::int64_t>(b.bytes - a.bytes); }
};

struct diff_row {
  std::uint32_t name = 0;  // number in the name book
  compared_amounts amounts;
};

// What became of a limit. It watches the total of its measure and every name of the key.
struct limit_verdict {
  growth_limit limit;
  bool passed = false;
  bool by_total = false;
  std::vector<diff_row> by;  // the names that passed it, the largest growth first
  amount total_a, total_b;
};

// Two runs compared by names, computed and not yet printed. It looks into the runs, which must
// outlive it.
struct run_diff {
  const run_profile* a = nullptr;
  const run_profile* b = nullptr;
  diff_options options;
  name_book names;
  compared_amounts total;
  std::vector<diff_row> rows;  // the largest growth first
  std::size_t left_out = 0;    // rows beyond `top`
  bool judged = false;         // false when a run is not complete: the verdicts mean nothing
  std::vector<limit_verdict> verdicts;

  bool any_passed() const;
};

// False, with `error` set, when a filter's expression cannot be read or neither run has such a
// process.
bool make_diff(const run_profile& a, const run_profile& b, const diff_options& options,
               run_diff& into, std::string& error);

// For people at most `top` rows, and only those that changed.
void print_diff(std::ostream& out, const run_diff& diff, const print_style& style, std::size_t top);

// Which names passed the limits, or why they were not judged, in a line; empty when all is well.
std::string verdict_in_words(const run_diff& diff);

}  // namespace kiv::report
