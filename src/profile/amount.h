#pragma once

#include <array>
#include <cstdint>

namespace kiv {

// Blocks with their sizes: what the program asked for, and with the allocator's rounding.
struct amount {
  std::uint64_t blocks = 0;
  std::uint64_t bytes = 0;
  std::uint64_t tot_bytes = 0;

  amount& operator+=(const amount& other) {
    blocks += other.blocks;
    bytes += other.bytes;
    tot_bytes += other.tot_bytes;
    return *this;
  }
  amount& operator-=(const amount& other) {
    blocks -= other.blocks;
    bytes -= other.bytes;
    tot_bytes -= other.tot_bytes;
    return *this;
  }
  friend amount operator+(amount a, const amount& b) { return a += b; }
  friend bool operator==(const amount&, const amount&) = default;
};

// What is summed up per group of blocks. A block counts for the place that made it, with its
// present size; `made` and `temporary` count it with the size that it was made with.
enum class figure : std::uint8_t {
  made,          // every block (record a or n)
  freed,         // ended by a free (f)
  left_with_id,  // with-free memory, given back with its id (F)
  reset,         // given back by a reset of its id (Z), both kinds
  released,      // no-free memory, given back with its id (F)
  live,          // live at the end of the trace
  at_peak,       // live at the peak
  temporary,     // freed (f) within 100 memory records of its making
};
inline constexpr std::size_t figure_count = 8;

// All figures of a group of blocks, and how often its blocks were resized.
struct group_figures {
  std::uint64_t resizes = 0;
  std::array<amount, figure_count> figures{};

  const amount& operator[](figure which) const { return figures[static_cast<std::size_t>(which)]; }
  amount& operator[](figure which) { return figures[static_cast<std::size_t>(which)]; }

  group_figures& operator+=(const group_figures& other) {
    resizes += other.resizes;
    for (std::size_t i = 0; i < figure_count; ++i) figures[i] += other.figures[i];
    return *this;
  }
};

}  // namespace kiv
