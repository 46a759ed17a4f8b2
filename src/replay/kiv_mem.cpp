#include "replay/kiv_mem.h"

#include <absl/container/flat_hash_map.h>
#include <absl/container/inlined_vector.h>
#include <absl/hash/hash.h>

#include <algorithm>
#include <utility>

#include "replay/kiv_hashloc.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"
#include "replay/observer.h"
#include "trace/diagnostics.h"

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

}  // namespace

std::size_t KivMem::hash::operator()(block_address addr) const {
  return absl::Hash<std::int64_t>{}(addr.value);
}

std::size_t KivMem::hash::operator()(handle block) const {
  return (*this)(block_address{(*pool)[block].addr});
}

KivMem::KivMem(kiv_reader& reader)
    : reader_(reader), pool_(reader.live_blocks()), blocks_(0, hash{&pool_}, equal{&pool_}) {}

std::optional<KivMem::handle> KivMem::find(std::int64_t addr) const {
  const auto entry = blocks_.find(block_address{addr});
  return entry == blocks_.end() ? std::nullopt : std::optional(*entry);
}

std::optional<KivMem::handle> KivMem::add_memory(const live_block& block) {
  bool added = false;
  const auto entry = blocks_.lazy_emplace(block_address{block.addr}, [&](const auto& construct) {
    construct(pool_.add(block));
    added = true;
  });
  if (added) return *entry;
  const live_block& held = pool_[*entry];
  reader_.faults().address_live_already(block.addr, held.record, held.size,
                                        reader_.hash_locations().text(held.location_text));
  return std::nullopt;
}

std::optional<KivMem::handle> KivMem::del_memory(std::int64_t addr, live_block& removed) {
  const auto entry = blocks_.find(block_address{addr});
  if (entry == blocks_.end()) return std::nullopt;
  const handle block = *entry;
  removed = pool_[block];
  blocks_.erase(entry);
  pool_.release(block);
  return block;
}

void KivMem::clear_all_mem(std::uint32_t color_count, bool verbose, kiv_type type) {
  if (blocks_.capacity() == 0 && !verbose) return;
  absl::InlinedVector<std::pair<std::int64_t, handle>, 32> ordered;
  ordered.reserve(blocks_.size());
  for (const handle block : blocks_) ordered.emplace_back(pool_[block].addr, block);
  blocks_ = decltype(blocks_)(0, hash{&pool_}, equal{&pool_});
  std::sort(ordered.begin(), ordered.end());

  block_sums all;
  absl::flat_hash_map<std::uint32_t, block_sums> by_color;
  const std::uint64_t cause = reader_.reserve_ids().global().rec.value;
  replay_observer& observer = reader_.observer();
  for (const auto& [addr, block] : ordered) {
    const live_block& ended = pool_[block];
    if (verbose) {
      all.add(ended);
      by_color[ended.color].add(ended);
    }
    observer.block_ended(block, ended, cause, type);
    pool_.release(block);
  }
  if (!verbose) return;
  reader_.faults().blocks_given_back(all.size, all.tot_size);
  for (std::uint32_t color = 0; color < color_count; ++color) {
    const auto entry = by_color.find(color);
    const block_sums sums = entry == by_color.end() ? block_sums{} : entry->second;
    reader_.faults().blocks_of_color(color, sums.tot_size, sums.size);
  }
}

}  // namespace kiv
