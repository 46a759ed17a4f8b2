#pragma once

#include <cstddef>
#include <cstdint>

namespace kiv::report {

// Bytes of a number in JSON.
constexpr std::size_t json_size(std::uint64_t number) {
  std::size_t digits = 1;
  for (; number > 9; number /= 10) ++digits;
  return digits;
}

}  // namespace kiv::report
