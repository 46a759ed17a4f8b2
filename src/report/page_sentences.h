#pragma once

#include <string>
#include <vector>

#include "report/page_data.h"

namespace kiv::report {

// What of a page was put together, left out or cut, for people.
std::vector<std::string> sentences_of(const page_content& page, const filter_options& filter,
                                      const name_limits& limits);

}  // namespace kiv::report
