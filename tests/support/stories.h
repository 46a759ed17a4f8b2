#pragma once

#include <cstdint>

#include "support/trace_builder.h"

namespace kiv::test {

// Traces told into a builder, which decides byte order, widths and files. All addresses, locations
// and symbols are below 2^31, so that a story means the same in four and in eight bytes.

// Every record type, nothing wrong; values differ from field to field. About a hundred records.
void every_record(trace& t);

// What a broken writer or a lost beginning leaves: unknown and duplicate numbers, illegal
// addresses, totals that differ, records out of sync. All of it can be read.
void damaged(trace& t);

// Some hundred plausible operations and a few impossible ones. No address is handed out twice and
// no process number is used again.
void random_operations(trace& t, std::uint32_t seed, int operations = 400);

}  // namespace kiv::test
