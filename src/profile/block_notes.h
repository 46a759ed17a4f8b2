#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "replay/live_block_pool.h"

namespace kiv {

// What the profile keeps of a live block besides the replay: 12 bytes by the block's handle.
class block_notes {
 public:
  using handle = live_block_pool::handle;

  void set(handle block, std::uint32_t group, std::uint64_t made) {
    while (block / chunk_size >= chunks_.size()) chunks_.push_back(std::make_unique<chunk>());
    chunk& place = *chunks_[block / chunk_size];
    place.group[block % chunk_size] = group;
    place.made[block % chunk_size] = made;
  }
  std::uint32_t& group(handle block) {
    return chunks_[block / chunk_size]->group[block % chunk_size];
  }
  // The memory record that made the block.
  std::uint64_t made(handle block) const {
    return chunks_[block / chunk_size]->made[block % chunk_size];
  }

 private:
  static constexpr std::uint32_t chunk_size = 4096;
  struct chunk {
    std::array<std::uint64_t, chunk_size> made;
    std::array<std::uint32_t, chunk_size> group;
  };
  std::vector<std::unique_ptr<chunk>> chunks_;
};

// The sizes with which the latest blocks were made: enough to know a temporary one's.
class recent_sizes {
 public:
  struct sizes {
    std::uint32_t size = 0;
    std::uint32_t tot_size = 0;
  };
  // A block freed within so many memory records of its making is temporary.
  static constexpr std::uint64_t temporary_span = 100;

  void made(std::uint64_t record, const sizes& with) { at(record) = with; }
  // Of a block whose maker is at most temporary_span records behind the latest record.
  const sizes& of(std::uint64_t record) { return at(record); }

 private:
  sizes& at(std::uint64_t record) { return sizes_[record % sizes_.size()]; }
  std::array<sizes, 128> sizes_{};
};

}  // namespace kiv
