#pragma once

#include <string>
#include <vector>

#include "profile/profile.h"

namespace kiv {

// A run: the traces that were analysed together, by the name under which it is asked for.
struct run_profile {
  std::string name;  // any bytes
  std::vector<profile> traces;
};

}  // namespace kiv
