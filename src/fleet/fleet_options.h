#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "report/measures.h"

namespace kiv::fleet {

// A decimal number as a fraction, so that figures are compared exactly.
struct multiple {
  std::uint64_t thousandths = 2000;

  // The largest whole number that is not beyond the multiple of `value`.
  std::uint64_t limit(std::uint64_t value) const;
};

// "2", "1.5"; nothing unless it is from 1 to 1,000,000 with at most three places.
std::optional<multiple> parse_multiple(std::string_view text);

// "64K", with K, M or G for units of 1024; nothing when it is no such number, or is too large.
std::optional<std::uint64_t> parse_bytes(std::string_view text);

struct fleet_options {
  std::string label = "release";  // the label whose values are the releases
  report::group_key by = report::group_key::line;
  report::measure of = report::measure::leaked;  // what is to grow
  multiple beyond;
  std::uint64_t leaked_above = 0;  // bytes
  std::size_t runs = 5;            // at least 2
};

}  // namespace kiv::fleet
