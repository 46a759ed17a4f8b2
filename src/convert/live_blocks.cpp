#include "convert/live_blocks.h"

#include <cstddef>
#include <utility>

namespace kiv::convert {

std::uint32_t live_blocks::add(std::uint32_t allocation) {
  if (allocation >= youngest_.size()) youngest_.resize(std::size_t{allocation} + 1, none);
  std::uint32_t block = 0;
  if (free_.empty()) {
    block = static_cast<std::uint32_t>(blocks_.size());
    blocks_.emplace_back();
  } else {
    block = free_.back();
    free_.pop_back();
  }
  const std::uint32_t older = std::exchange(youngest_[allocation], block);
  if (older != none) blocks_[older].younger = block;
  blocks_[block] = {allocation, older, none};
  return block;
}

std::uint32_t live_blocks::remove_youngest(std::uint32_t allocation) {
  const std::uint32_t block = allocation < youngest_.size() ? youngest_[allocation] : none;
  if (block != none) end(block);
  return block;
}

bool live_blocks::remove(std::uint32_t allocation, std::uint32_t block) {
  if (block >= blocks_.size() || blocks_[block].allocation != allocation) return false;
  end(block);
  return true;
}

void live_blocks::end(std::uint32_t block) {
  place& ended = blocks_[block];
  if (ended.older != none) blocks_[ended.older].younger = ended.younger;
  if (ended.younger != none) {
    blocks_[ended.younger].older = ended.older;
  } else {
    youngest_[ended.allocation] = ended.older;
  }
  ended = {};
  free_.push_back(block);
}

}  // namespace kiv::convert
