#pragma once

#include <absl/container/flat_hash_set.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

#include "events/kiv_type.h"
#include "memory/live_block_pool.h"

namespace kiv {

class kiv_reader;
class KivMallocWF;
class KivMallocNF;

// The live blocks of one kind under one allocation id: address -> block, no address twice. T is the
// event that brings the blocks: KivMallocWF* or KivMallocNF*.
template <class T>
class KivMem {
 public:
  explicit KivMem(kiv_reader* reader);

  // Null when no block is live at the address. Valid until the table changes.
  live_block* find(std::int64_t addr);

  // False, with a message on the error stream, when a block is live at the address already.
  bool add_memory(const live_block& block);

  // Takes a block out and returns it; nothing when no block is live at the address. No-free blocks
  // leave by a clear alone.
  std::optional<live_block> del_memory(std::int64_t addr) requires std::is_same_v<T, KivMallocWF*>;

  // Gives back every block in ascending order of address, each with a row of `freemem`. With
  // `verbose` the sums of all blocks and of each of the id's colours go to the standard output.
  void clear_all_mem(std::uint32_t color_count, bool verbose, kiv_type type);

  std::size_t size() const { return blocks_.size(); }

 private:
  struct block_address {
    std::int64_t value;
  };
  struct hash {
    using is_transparent = void;
    std::size_t operator()(block_address addr) const;
    std::size_t operator()(live_block_pool::handle block) const;
    const live_block_pool* pool;
  };
  struct equal {
    using is_transparent = void;
    bool operator()(live_block_pool::handle a, live_block_pool::handle b) const { return a == b; }
    bool operator()(live_block_pool::handle a, block_address b) const {
      return (*pool)[a].addr == b.value;
    }
    bool operator()(block_address a, live_block_pool::handle b) const { return (*this)(b, a); }
    const live_block_pool* pool;
  };

  kiv_reader* reader_;
  live_block_pool* pool_;
  absl::flat_hash_set<live_block_pool::handle, hash, equal> blocks_;
};

extern template class KivMem<KivMallocWF*>;
extern template class KivMem<KivMallocNF*>;

}  // namespace kiv
