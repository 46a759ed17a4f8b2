#pragma once

#include <string>
#include <vector>

#include "profile/run_profile.h"
#include "rows/import_plan.h"
#include "rows/run_reading.h"

namespace kiv::rows {

// Computes the profiles of a run from its CSV tables, as far as they allow: of a call path they
// know the innermost function, and of what a trace lacks only some. Takes memory for the live
// blocks, the groups and the names. `rejected` gets a line per file with rows that could not be
// read. False, with `error` naming file and line, when the tables are not whole or contradict each
// other.
bool profile_from_rows(const run_plan& run, const row_options& options, run_profile& into,
                       std::vector<std::string>& rejected, std::string& error);

}  // namespace kiv::rows
