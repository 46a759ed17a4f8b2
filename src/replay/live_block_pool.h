#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace kiv {

// What is kept of an allocation while it is live; never in two lines of the processor's cache.
struct alignas(32) live_block {
  std::int64_t addr;
  std::uint64_t record;  // memory record number of the allocation or of its last reallocation
  std::uint32_t size;
  std::uint32_t tot_size;
  std::uint32_t color;
  std::uint32_t location_text;  // in the book of source locations
};

// The live blocks of all allocation ids of a trace: one compact store, so that a block costs its
// 32 bytes and an entry in its table, and a table that grows moves four bytes per block. Handles
// are small numbers: freed ones are given out again before new ones.
class live_block_pool {
 public:
  using handle = std::uint32_t;

  live_block& operator[](handle block) { return chunks_[block / chunk_size][block % chunk_size]; }
  const live_block& operator[](handle block) const {
    return chunks_[block / chunk_size][block % chunk_size];
  }

  handle add(const live_block& block) {
    if (first_free_ == no_block) add_chunk();
    const handle place = first_free_;
    first_free_ = (*this)[place].color;
    (*this)[place] = block;
    return place;
  }

  // The handle may be given out again from now on.
  void release(handle block) {
    (*this)[block].color = first_free_;  // free places form a list through this member
    first_free_ = block;
  }

 private:
  static constexpr std::uint32_t chunk_size = 4096;
  static constexpr handle no_block = 0xffffffff;

  void add_chunk() {
    const auto first = static_cast<handle>(chunks_.size() * chunk_size);
    chunks_.push_back(std::make_unique_for_overwrite<live_block[]>(chunk_size));
    for (handle place = first + chunk_size; place > first; --place) release(place - 1);
  }

  std::vector<std::unique_ptr<live_block[]>> chunks_;
  handle first_free_ = no_block;
};

}  // namespace kiv
