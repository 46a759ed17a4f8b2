#pragma once

#include <absl/container/flat_hash_set.h>

#include <cstddef>
#include <cstdint>
#include <optional>

#include "replay/live_block_pool.h"
#include "trace/kiv_type.h"

namespace kiv {

class kiv_reader;

// The live blocks of one kind under one allocation id: address -> block, no address twice.
class KivMem {
 public:
  using handle = live_block_pool::handle;

  explicit KivMem(kiv_reader& reader);

  // Nothing when no block is live at the address.
  std::optional<handle> find(std::int64_t addr) const;

  // Nothing, and it is said, when a block is live at the address already.
  std::optional<handle> add_memory(const live_block& block);

  // Takes the block at an address out and copies it to `removed`; its handle may be given out again
  // from now on. Nothing when no block is live there.
  std::optional<handle> del_memory(std::int64_t addr, live_block& removed);

  // Gives back every block in ascending order of address, and tells the observer of each that
  // `type`, a free or reset of the id, ended it. With `verbose` the sums of all blocks and of each
  // of the id's colours are told.
  void clear_all_mem(std::uint32_t color_count, bool verbose, kiv_type type);

 private:
  struct block_address {
    std::int64_t value;
  };
  struct hash {
    using is_transparent = void;
    std::size_t operator()(block_address addr) const;
    std::size_t operator()(handle block) const;
    const live_block_pool* pool;
  };
  struct equal {
    using is_transparent = void;
    bool operator()(handle a, handle b) const { return a == b; }
    bool operator()(handle a, block_address b) const { return (*pool)[a].addr == b.value; }
    bool operator()(block_address a, handle b) const { return (*this)(b, a); }
    const live_block_pool* pool;
  };

  kiv_reader& reader_;
  live_block_pool& pool_;
  absl::flat_hash_set<handle, hash, equal> blocks_;
};

}  // namespace kiv
