#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "profile/run_profile.h"
#include "rows/import_plan.h"
#include "rows/run_reading.h"
#include "store/row_target.h"

namespace kiv::rows {

// Loads the CSV tables of a run, within a save (store::save_options::rows). Checks that the tables
// are whole: the records of every trace, and their number, the blocks made and ended and the growth
// of the heap against the profiles of `run`. Gives the number of rows; nothing, with `error` naming
// the file, at the first fault. `rejected` gets a line per file with rows that could not be read.
std::optional<std::uint64_t> load_rows(store::row_target& target, const run_plan& plan,
                                       const row_options& options, const run_profile& run,
                                       std::vector<std::string>& rejected, std::string& error);

}  // namespace kiv::rows
