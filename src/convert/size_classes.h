#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace kiv::convert {

// Blocks by size: the colours of a converted trace.
struct size_class {
  std::uint64_t most;  // bytes
  std::string_view name;
};

inline constexpr std::array<size_class, 10> size_classes{{
    {16, "up to 16 B"},
    {64, "17 to 64 B"},
    {256, "65 to 256 B"},
    {1024, "257 B to 1 KiB"},
    {4096, "1 to 4 KiB"},
    {16384, "4 to 16 KiB"},
    {65536, "16 to 64 KiB"},
    {262144, "64 to 256 KiB"},
    {1048576, "256 KiB to 1 MiB"},
    {UINT64_MAX, "more than 1 MiB"},
}};

constexpr std::uint32_t size_class_of(std::uint64_t size) {
  std::uint32_t index = 0;
  while (size > size_classes.at(index).most) ++index;
  return index;
}

}  // namespace kiv::convert
