#pragma once

#include <cstdint>
#include <string>

#include "fleet/fleet_options.h"

namespace kiv::fleet {

// How many times one figure is the other or the other way round, whichever is more; infinite when
// one of them is 0.
double distance_of(std::uint64_t a, std::uint64_t b);

// "2.3 x"; "-" when there is nothing to compare with.
std::string times_text(std::uint64_t value, std::uint64_t of);

// "2", "1.5"
std::string text_of(const multiple& m);

}  // namespace kiv::fleet
