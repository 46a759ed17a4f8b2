#pragma once

#include <optional>
#include <string>
#include <vector>

#include "report/page_data.h"

namespace kiv::report {

// What of a page was put together, left out or cut, for people.
std::vector<std::string> sentences_of(const page_data& page,
                                      std::optional<std::size_t> longest_name,
                                      std::optional<std::size_t> most_frames);

}  // namespace kiv::report
