#pragma once

#include <cstddef>
#include <string>

#include "database.h"

namespace kiv::db {

// Sums over the blocks of one kind, id, colour, line, arc and query: the finest grouping that any
// view wants, so that one pass over all blocks serves them all.

// The grouping as one SELECT.
std::string block_groups_select();

// Fills the table block_groups for a run. Gives what the SELECT gives, but several times faster,
// since it sorts nothing. It holds `max_groups` at most, so a group may come out in several parts;
// they add up.
bool fill_block_groups(database& db, const std::string& run_id, std::size_t max_groups = 50'000);

}  // namespace kiv::db
