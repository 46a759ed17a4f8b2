#pragma once

#include <optional>
#include <string>
#include <vector>

#include "store/run_source.h"
#include "store/sqlite.h"

namespace kiv::store {

// The runs of a database in the order of their imports. Nothing, with `error` set, when they cannot
// be read.
std::optional<std::vector<run_info>> read_run_list(database& db, std::string& error);

// Writes the labels of the run with that key. False when the database failed.
bool write_labels(database& db, std::int64_t run, const run_labels& labels);

}  // namespace kiv::store
