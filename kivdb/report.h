#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "database.h"
#include "result_table.h"

namespace kiv::db {

struct report_options {
  std::string run;              // empty: the run imported last
  std::vector<std::string> by;  // names of view keys
  std::int64_t top = 10;        // rows of each list
  output_format format = output_format::terminal;
  print_style style;
};

// Prints the summary of a run and its top lists. False, with `error` set, when there is no such
// run.
bool print_report(std::ostream& out, database& db, const report_options& options,
                  std::string& error);

// The run imported last; empty when there is none.
std::string latest_run(database& db);
bool has_run(database& db, const std::string& run);

}  // namespace kiv::db
