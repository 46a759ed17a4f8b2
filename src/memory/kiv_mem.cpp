#include "memory/kiv_mem.h"

#include <absl/container/flat_hash_map.h>
#include <absl/container/inlined_vector.h>
#include <absl/hash/hash.h>

#include <algorithm>
#include <iostream>
#include <utility>

#include "analysis/kiv_hashloc.h"
#include "memory/freemem_row.h"
#include "memory/kiv_reserve_id_db.h"
#include "reader/kiv_reader.h"

namespace kiv {

namespace {

struct block_sums {
  void add(const live_block& block) {
    size += block.size;
    tot_size += block.tot_size;
  }
  std::uint64_t size = 0;
  std::uint64_t tot_size = 0;
};

void report_sums(const block_sums& all,
                 const absl::flat_hash_map<std::uint32_t, block_sums>& by_color,
                 std::uint32_t color_count) {
  std::cout << " >clear_all_mem()\n"
            << " >size     " << all.size << '\n'
            << " >tot_size " << all.tot_size << '\n';
  for (std::uint32_t color = 0; color < color_count; ++color) {
    const auto entry = by_color.find(color);
    const block_sums sums = entry == by_color.end() ? block_sums{} : entry->second;
    std::cout << " >> " << color << " tot_size " << sums.tot_size << " size     " << sums.size
              << '\n';
  }
}

}  // namespace

template <class T>
std::size_t KivMem<T>::hash::operator()(block_address addr) const {
  return absl::Hash<std::int64_t>{}(addr.value);
}

template <class T>
std::size_t KivMem<T>::hash::operator()(live_block_pool::handle block) const {
  return (*this)(block_address{(*pool)[block].addr});
}

template <class T>
KivMem<T>::KivMem(kiv_reader* reader)
    : reader_(reader), pool_(&reader->live_blocks()), blocks_(0, hash{pool_}, equal{pool_}) {}

template <class T>
live_block* KivMem<T>::find(std::int64_t addr) {
  const auto entry = blocks_.find(block_address{addr});
  return entry == blocks_.end() ? nullptr : &(*pool_)[*entry];
}

template <class T>
bool KivMem<T>::add_memory(const live_block& block) {
  bool added = false;
  const auto entry = blocks_.lazy_emplace(block_address{block.addr}, [&](const auto& construct) {
    construct(pool_->add(block));
    added = true;
  });
  if (!added) {
    const live_block& held = (*pool_)[*entry];
    std::cerr << " addr: " << block.addr << " already in DB!!!"
              << " rec: " << held.record << " size: " << held.size
              << " hashlock: " << reader_->hash_locations().text(held.location_text) << '\n';
  }
  return added;
}

template <class T>
std::optional<live_block> KivMem<T>::del_memory(
    std::int64_t addr) requires std::is_same_v<T, KivMallocWF*> {
  const auto entry = blocks_.find(block_address{addr});
  if (entry == blocks_.end()) return std::nullopt;
  const live_block_pool::handle handle = *entry;
  const live_block block = (*pool_)[handle];
  blocks_.erase(entry);
  pool_->release(handle);
  return block;
}

template <class T>
void KivMem<T>::clear_all_mem(std::uint32_t color_count, bool verbose, kiv_type type) {
  if (blocks_.capacity() == 0 && !verbose) return;
  absl::InlinedVector<std::pair<std::int64_t, live_block_pool::handle>, 32> ordered;
  ordered.reserve(blocks_.size());
  for (const live_block_pool::handle block : blocks_) {
    ordered.emplace_back((*pool_)[block].addr, block);
  }
  blocks_ = decltype(blocks_)(0, hash{pool_}, equal{pool_});
  std::sort(ordered.begin(), ordered.end());

  block_sums all;
  absl::flat_hash_map<std::uint32_t, block_sums> by_color;
  const std::uint64_t cause = reader_->reserve_ids().global().rec.value;
  for (const auto& [addr, handle] : ordered) {
    const live_block& block = (*pool_)[handle];
    if (verbose) {
      all.add(block);
      by_color[block.color].add(block);
    }
    write_freemem_row(*reader_, block.record, cause, type);
    pool_->release(handle);
  }
  if (verbose) report_sums(all, by_color, color_count);
}

template class KivMem<KivMallocWF*>;
template class KivMem<KivMallocNF*>;

}  // namespace kiv
