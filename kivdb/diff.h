#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "database.h"
#include "human.h"
#include "report.h"

namespace kiv::db {

struct diff_options {
  std::string run_a, run_b;
  std::string by = "id";    // name of a view key
  std::string of = "live";  // live, peak or allocated bytes
  std::int64_t top = 20;    // rows to print; the limit watches all
  std::optional<growth_limit> fail_above;
  output_format format = output_format::terminal;
  print_style style;
};

enum class diff_result { within_limit, beyond_limit, failed };

// Compares two runs by names that mean the same in both, the largest growth first. `error` says
// why it failed, or what grew beyond the limit.
diff_result print_diff(std::ostream& out, database& db, const diff_options& options,
                       std::string& error);

}  // namespace kiv::db
