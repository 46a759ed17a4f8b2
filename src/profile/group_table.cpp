#include "profile/group_table.h"

#include <vector>

#include "profile/name_lists.h"

namespace kiv {

group_table::handle group_table::find_or_add(const group_key& key) {
  if (index_.size() >= max_groups) {
    const auto known = known_key(key);
    const handle* group = known ? index_.find(*known) : nullptr;
    return group != nullptr ? *group : fold(key);
  }
  return group_with({lines_.add(key.location), key.path, origins_.add(key.id, key.color),
                     contexts_.add({key.process, key.query, key.no_free})});
}

std::optional<compact_key> group_table::known_key(const group_key& key) const {
  const auto* line = lines_.find(key.location);
  const auto* from = origins_.find(key.id, key.color);
  const auto* rest = contexts_.find({key.process, key.query, key.no_free});
  if (line == nullptr || from == nullptr || rest == nullptr) return std::nullopt;
  return compact_key{*line, key.path, *from, *rest};
}

group_table::handle group_table::fold(const group_key& key) {
  ++blocks_folded_;
  return group_with({lines_.none(), 0, origins_.any(key.id),
                     contexts_.add({key.process, group_key::no_query, key.no_free})});
}

group_table::handle group_table::group_with(const compact_key& key) {
  return index_.find_or_make(key, [&] {
    if (free_.empty()) return groups_.add(key);
    const handle place = free_.back();
    free_.pop_back();
    groups_.set_key(place, key);
    return place;
  });
}

group_table::handle group_table::set_query(handle which, std::uint64_t query) {
  compact_key key = groups_.key(which);
  context changed = contexts_[key.context];
  if (changed.query != group_key::open_query) return which;
  changed.query = query;
  key.context = contexts_.add(changed);
  index_.erase(which);
  groups_.set_key(which, key);
  const handle kept = index_.find_or_insert(which);
  if (kept == which) return which;
  groups_.move_figures(which, kept);
  free_.push_back(which);
  return kept;
}

block_groups group_table::take(name_lists& names) {
  index_.clear();
  free_ = {};
  block_groups::key_parts parts;
  for (const auto& location : lines_.all()) {
    parts.lines.push_back(location ? names.line(*location) : names.line_left_out());
  }
  for (const auto& [id, color] : origins_.all()) {
    const std::uint32_t place = names.id(id);
    parts.origins.emplace_back(place, color ? names.color(id, *color) : 0);
  }
  for (std::uint32_t i = 0; i < contexts_.size(); ++i) {
    const context& one = contexts_[i];
    const bool finished = one.query < group_key::no_query;
    parts.contexts.push_back({one.process,
                              finished ? names.query(static_cast<std::uint32_t>(one.query)) : 0,
                              one.no_free});
  }
  groups_.settle_peaks();
  block_groups list;
  list.adopt(std::move(groups_), parts, names.shared_places());
  return list;
}

}  // namespace kiv
