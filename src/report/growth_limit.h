#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "report/measures.h"

namespace kiv::report {

// How much a measure may grow: "leaked=64K", "peak=5%". Bytes with K, M or G behind them are units
// of 1024.
struct growth_limit {
  measure of = measure::leaked;
  double value = 0;
  bool percent = false;
  std::string text;  // the limit as it was written: "64K"
};

// Nothing when the text is not MEASURE=LIMIT, with a LIMIT of at least 0.
std::optional<growth_limit> parse_growth_limit(std::string_view text);

// Whether a figure grew by more than the limit. What was nothing before passes every percentage.
bool is_passed(const growth_limit& limit, std::uint64_t before, std::uint64_t after);

}  // namespace kiv::report
