#pragma once

#include <cstdint>
#include <string_view>
#include <tuple>

#include "trace/kiv_type.h"
#include "util/moment.h"

namespace kiv {

struct KivTimeStamp {
  static constexpr kiv_type type = kiv_e_timestamp;
  auto numbers() { return std::tie(tv_secs, tv_nsecs); }
  moment when() const { return {tv_secs, tv_nsecs}; }

  std::uint32_t tv_secs = 0;  // since the epoch, up to the year 2106
  std::uint32_t tv_nsecs = 0;
};

// A text that the traced program's user put into the trace.
struct KivMarker {
  static constexpr kiv_type type = kiv_e_marker;
  auto numbers() { return std::tie(); }
  auto& text() { return words; }

  std::string_view words;
};

}  // namespace kiv
