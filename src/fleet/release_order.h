#pragma once

#include <map>
#include <string>

#include "fleet/fleet_runs.h"

namespace kiv::fleet {

// Releases in the order in which the first run of each was imported: their texts have none.
class release_order {
 public:
  explicit release_order(const fleet_runs& runs) {
    for (const auto& [order, run] : runs.runs()) places_.try_emplace(run.release, order);
  }
  std::int64_t place(const std::string& release) const { return places_.at(release); }

 private:
  std::map<std::string, std::int64_t> places_;
};

}  // namespace kiv::fleet
