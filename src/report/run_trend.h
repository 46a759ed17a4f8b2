#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "profile/run_profile.h"
#include "report/group_filter.h"
#include "report/measures.h"
#include "report/name_book.h"
#include "report/table.h"

namespace kiv::report {

struct trend_options {
  group_key by = group_key::line;
  measure of = measure::leaked;
  filter_options filter = {};
};

// The totals of one run.
struct trend_point {
  std::string run;
  bool complete = false;
  std::array<amount, measure_count> totals{};  // by measure
};

// One name over all runs.
struct trend_row {
  std::uint32_t name = 0;            // number in the name book
  std::vector<std::uint64_t> bytes;  // of the measure, one for each run
  std::int64_t change = 0;           // from the first run to the last
  std::uint64_t grew = 0;            // in how many of the steps from run to run it grew
};

// What runs became from one to the next. Runs are added one by one and need not stay.
class run_trend {
 public:
  explicit run_trend(const trend_options& options) : options_(options) {}

  // False, with `error` set, when a filter's expression cannot be read.
  bool add(const run_profile& run, std::string& error);
  // After the last run: makes the rows. The largest change first, then what grew most steadily.
  // With `top`, rows beyond it are left out.
  void finish(std::optional<std::size_t> top);

  const trend_options& options() const { return options_; }
  const std::vector<trend_point>& points() const { return points_; }
  const std::vector<trend_row>& rows() const { return rows_; }
  std::size_t left_out() const { return left_out_; }
  const name_book& names() const { return names_; }
  bool process_was_seen() const { return process_was_seen_; }

 private:
  trend_options options_;
  name_book names_;
  std::vector<trend_point> points_;
  std::vector<std::vector<std::uint64_t>> bytes_;  // for each run, by number of the name
  std::vector<trend_row> rows_;
  std::size_t left_out_ = 0;
  bool process_was_seen_ = false;
};

// For people at most `top` names.
void print_trend(std::ostream& out, const run_trend& trend, const print_style& style,
                 std::size_t top);

}  // namespace kiv::report
