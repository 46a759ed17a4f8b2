#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "export/run_export.h"

namespace kiv::exports {

// The order of groups of blocks by their names. That in which a profile has them differs from one
// replay of a trace to the next.
class group_order {
 public:
  explicit group_order(const run_export& what);

  // The places of the kept groups of a trace: by call path, line, id, colour, process, statement.
  std::vector<std::size_t> of(const report::named_trace& trace) const;

 private:
  std::array<std::vector<std::uint32_t>, report::key_count> ranks_;  // by number in the name book
};

}  // namespace kiv::exports
