#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "profile/profile.h"

namespace kiv::report {

// One block character of a height from 0 (a space) to `highest` for each value.
std::string bars(const std::vector<std::uint64_t>& values, std::uint64_t highest);

// Live memory over the memory records of a trace as a line of block characters, each as high as the
// most that was live in its share of the records. At most `columns` characters; empty without a
// timeline.
std::string timeline_picture(const profile& trace, std::size_t columns);

}  // namespace kiv::report
