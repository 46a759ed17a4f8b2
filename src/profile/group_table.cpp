#include "profile/group_table.h"

#include <utility>

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
    place = static_cast<handle>(groups_.size());
    groups_.emplace_back();
  } else {
    place = free_.back();
    free_.pop_back();
    groups_[place] = {};
  }
  group& added = groups_[place];
  added.key = key.key;
  added.hash = key.hash;
  added.peaks_seen = peaks_;
  return place;
}

group_table::handle group_table::set_query(handle which, std::uint64_t query) {
  group& renamed = groups_[which];
  index_.erase(which);
  renamed.key.query = query;
  renamed.hash = absl::Hash<group_key>{}(renamed.key);
  const auto [entry, added] = index_.insert(which);
  if (added) return which;
  group& kept = groups_[*entry];
  settle_peak(renamed);
  settle_peak(kept);
  for (std::size_t i = 0; i < figure_count; ++i) kept.figures[i] += renamed.figures[i];
  kept.resizes += renamed.resizes;
  free_.push_back(which);
  return *entry;
}

}  // namespace kiv
