#pragma once

#include <cstdint>

namespace kiv::clickhouse {

// The number of a load, above all so far. By the clock, with some bits that keep loads of the same
// moment apart.
std::int64_t next_import(std::int64_t newest);

// Numbers of loads that began so long ago are below this one.
std::int64_t import_hours_ago(std::int64_t hours);

}  // namespace kiv::clickhouse
