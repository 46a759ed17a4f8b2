#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "database.h"
#include "result_table.h"

namespace kiv::db {

struct show_options {
  std::string view;
  std::string run;       // empty: all runs
  std::int64_t top = 0;  // rows; 0: all, on a terminal the first hundred
  output_format format = output_format::terminal;
  print_style style;
};

// Prints a view. For scripts the rows go out one by one, however many there are. False, with
// `error` set, when there is no such view.
bool print_view(std::ostream& out, database& db, const show_options& options, std::string& error);

}  // namespace kiv::db
