#pragma once

#include <iosfwd>
#include <optional>
#include <vector>

#include "fleet/fleet_answer.h"

namespace kiv::fleet {

// Prints the answers, of each at most `top` rows; for people, who are told how many more there are,
// ten unless told.
void print_fleet(std::ostream& out, const fleet_runs& runs,
                 const std::vector<fleet_answer>& answers, const fleet_options& options,
                 const report::print_style& style, std::optional<std::size_t> top);

}  // namespace kiv::fleet
