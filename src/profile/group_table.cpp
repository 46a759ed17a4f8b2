#include "profile/group_table.h"

namespace kiv {

group_table::handle group_table::find_or_add(const group_key& key) {
  if (index_.size() >= max_groups && !key.folded) {
    const auto known = index_.find(hashed_key{key, absl::Hash<group_key>{}(key)});
    if (known != index_.end()) return *known;
    ++blocks_folded_;
    group_key folded;
    folded.id = key.id;
    folded.process = key.process;
    folded.no_free = key.no_free;
    folded.folded = true;
    return find_or_add(folded);
  }
  const hashed_key hashed{key, absl::Hash<group_key>{}(key)};
  return *index_.lazy_emplace(hashed, [&](const auto& construct) { construct(add(hashed)); });
}

group_table::handle group_table::add(const hashed_key& key) {
  handle place = 0;
  if (free_.empty()) {
    if (chunks_.empty() || chunks_.back().size() == chunk_size) {
      chunks_.emplace_back().reserve(chunk_size);
    }
    const std::size_t before = (chunks_.size() - 1) * chunk_size;
    place = static_cast<handle>(before + chunks_.back().size());
    chunks_.back().emplace_back();
  } else {
    place = free_.back();
    free_.pop_back();
    (*this)[place] = {};
  }
  group& added = (*this)[place];
  added.key = key.key;
  added.hash = key.hash;
  added.peaks_seen = peaks_;
  return place;
}

group_table::handle group_table::set_query(handle which, std::uint64_t query) {
  group& renamed = (*this)[which];
  index_.erase(which);
  renamed.key.query = query;
  renamed.hash = absl::Hash<group_key>{}(renamed.key);
  const auto [entry, added] = index_.insert(which);
  if (added) return which;
  group& kept = (*this)[*entry];
  settle_peak(renamed);
  settle_peak(kept);
  for (std::size_t i = 0; i < figure_count; ++i) kept.figures[i] += renamed.figures[i];
  kept.resizes += renamed.resizes;
  renamed.merged = true;
  free_.push_back(which);
  return *entry;
}

}  // namespace kiv
