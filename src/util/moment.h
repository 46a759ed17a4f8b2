#pragma once

#include <cstdint>

namespace kiv {

// A point in time as traces hold it. Neither number need be sound: a damaged trace may give any.
struct moment {
  std::int64_t secs = 0;  // since the epoch
  std::int64_t nsecs = 0;
};

}  // namespace kiv
