#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <string>
#include <utility>

#include "convert/recording_lines.h"

namespace kiv::convert {

// The raw recording from which an interpreted one was made. It tells the addresses of blocks, and
// so which of several equal blocks ended. Both tell the same allocations and ends in the same
// order; ends of unknown addresses are in the raw one only.
class raw_recording {
 public:
  // `lines`: those behind the head.
  explicit raw_recording(recording_lines lines) : lines_(std::move(lines)) {}

  // The next allocation makes that block. False when none of that size follows here.
  bool add(std::uint64_t size, std::uint32_t block);
  // The block that the next end ends. False when none follows here.
  bool remove(std::uint32_t& block);

  std::uint64_t line() const { return lines_.number(); }
  bool at_end() const { return at_end_; }
  // Why the end came before its time; empty when it did not.
  const std::string& fault() const { return lines_.fault(); }

 private:
  // The letter of the next allocation, or of the next end of a known block; 0 at the end.
  char next(std::uint64_t& size, std::uint64_t& address);

  recording_lines lines_;
  bool at_end_ = false;
  absl::flat_hash_map<std::uint64_t, std::uint32_t> block_at_;
};

}  // namespace kiv::convert
