#pragma once

#include <cstdint>
#include <tuple>

#include "trace/kiv_type.h"

namespace kiv {

// Records that allocate, resize or give back memory. As in all records, `numbers` and `text` name
// the fields in the order in which the record holds them. Sizes are bytes: what the program asked
// for (`size`), and what the allocator took for it (`tot_size`).

// Allocation that the program will free block by block.
struct KivMallocWF {
  static constexpr kiv_type type = kiv_e_malloc_wf;
  auto numbers() { return std::tie(id, color, addr, addr_realloc, size, tot_size, location); }

  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::int64_t addr = 0;
  std::int64_t addr_realloc = 0;  // the live block that this one replaces, 0 when none
  std::uint32_t size = 0;
  std::uint32_t tot_size = 0;
  std::int64_t location = 0;
};

// Allocation that is given back with its id only.
struct KivMallocNF {
  static constexpr kiv_type type = kiv_e_malloc_nf;
  auto numbers() { return std::tie(id, color, addr, size, tot_size, location); }

  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::int64_t addr = 0;
  std::uint32_t size = 0;
  std::uint32_t tot_size = 0;
  std::int64_t location = 0;
};

struct KivFree {
  static constexpr kiv_type type = kiv_e_free;
  auto numbers() { return std::tie(id, color, addr, location); }

  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::int64_t addr = 0;
  std::int64_t location = 0;
};

// Resizes a block in place.
struct KivFreeRealloc {
  static constexpr kiv_type type = kiv_e_free_realloc;
  auto numbers() { return std::tie(id, color, addr, addr_free, size, tot_size, location); }

  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::int64_t addr = 0;
  std::int64_t addr_free = 0;
  std::uint32_t size = 0;
  std::uint32_t tot_size = 0;
  std::int64_t location = 0;
};

}  // namespace kiv
