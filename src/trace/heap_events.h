#pragma once

#include <cstdint>
#include <tuple>

#include "trace/kiv_type.h"

namespace kiv {

// The heap grew.
struct KivSbrk {
  static constexpr kiv_type type = kiv_e_sbrk;
  auto numbers() { return std::tie(addr, size); }

  std::int64_t addr = 0;
  std::uint32_t size = 0;
};

// The heap grew behind a gap that somebody else holds.
struct KivSbrkGap {
  static constexpr kiv_type type = kiv_e_sbrk_gap;
  auto numbers() { return std::tie(l_sbrk, c_sbrk); }

  std::int64_t l_sbrk = 0;  // the last end of the heap
  std::int64_t c_sbrk = 0;  // the start of the new part
};

// What the native allocator says of itself.
struct KivMallInfo {
  static constexpr kiv_type type = kiv_e_mallinfo;
  auto numbers() { return std::tie(arena, used, freed); }

  std::uint32_t arena = 0;
  std::uint32_t used = 0;
  std::uint32_t freed = 0;
};

}  // namespace kiv
