#pragma once

#include <cstdint>
#include <vector>

namespace kiv::convert {

// The live blocks of a recording that tells of a block's making and end only its size and stack.
// A block is a number from 0, handed out again when the block has ended: live ones lie densely.
class live_blocks {
 public:
  static constexpr std::uint32_t none = UINT32_MAX;

  // `allocation`: the number of a size and stack.
  std::uint32_t add(std::uint32_t allocation);
  // The youngest live block of that size and stack, which ends; none when there is none.
  std::uint32_t remove_youngest(std::uint32_t allocation);
  // Ends a block that is known otherwise. False when no block of that size and stack is live there.
  bool remove(std::uint32_t allocation, std::uint32_t block);

 private:
  // A live block's place among those of its size and stack.
  struct place {
    std::uint32_t allocation = none;  // none: no block is live
    std::uint32_t older = none, younger = none;
  };

  void end(std::uint32_t block);

  std::vector<std::uint32_t> youngest_;  // by allocation
  std::vector<place> blocks_;
  std::vector<std::uint32_t> free_;
};

}  // namespace kiv::convert
