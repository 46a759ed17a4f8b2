#include "profile/group_table.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "profile/name_lists.h"

namespace kiv {

namespace {

constexpr std::size_t piece_size = std::size_t{64} * 1024;  // written or read at once

}  // namespace

group_table::handle group_table::find_or_add(const group_key& key) {
  if (index_.size() >= set_aside_at_) set_aside();
  if (index_.size() + groups_aside_ >= max_groups) {
    const auto known = known_key(key);
    const handle* group = known ? index_.find(*known) : nullptr;
    return group != nullptr ? *group : fold(key);
  }
  const compact_key compact = {lines_.add(key.location), key.path, origins_.add(key.id, key.color),
                               contexts_.add({key.process, key.query, key.no_free})};
  if (key.path >= latest_.size()) latest_.resize(key.path + 1);
  handle& latest = latest_[key.path];
  if (latest == 0 || groups_.key(latest - 1) != compact) latest = group_with(compact) + 1;
  return latest - 1;
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
  return index_.find_or_make(key, [&] { return groups_.add(key); });
}

group_table::handle group_table::set_query(handle which, std::uint64_t query) {
  compact_key key = groups_.key(which);
  context changed = contexts_[key.context];
  if (changed.query != group_key::open_query) return which;
  changed.query = query;
  key.context = contexts_.add(changed);
  if (key.path < latest_.size()) latest_[key.path] = 0;
  index_.erase(which);
  groups_.set_key(which, key);
  const handle kept = index_.find_or_insert(which);
  if (kept == which) return which;
  groups_.move_figures(which, kept);
  groups_.release(which);
  return kept;
}

bool group_table::may_set_aside(handle which) const {
  return !groups_.is_empty(which) && groups_.is_over(which) &&
         contexts_[groups_.key(which).context].query != group_key::open_query;
}

void group_table::set_aside() {
  std::string bytes;
  std::vector<handle> in_bytes;
  for (handle i = 0; i < groups_.size(); ++i) {
    if (may_set_aside(i)) {
      groups_.save(i, bytes);
      in_bytes.push_back(i);
    }
    if (bytes.size() < piece_size && i + 1 < groups_.size()) continue;
    if (!aside_.append(bytes)) {
      set_aside_at_ = max_groups;  // no room on the disk: all others stay
      break;
    }
    for (const handle saved : in_bytes) groups_.forget(saved);
    groups_aside_ += in_bytes.size();
    in_bytes.clear();
    bytes.clear();
  }
  // Going over all groups pays when many have come since.
  const std::size_t left = groups_.size() - groups_.released();
  if (set_aside_at_ < max_groups) set_aside_at_ = std::max(least_groups_to_set_aside, 2 * left);
  latest_.clear();
  // Made anew it is faster than with the gaps of so many that are gone.
  index_.clear();
  index_.reserve(set_aside_at_);
  for (handle i = 0; i < groups_.size(); ++i) {
    if (!groups_.is_empty(i)) index_.find_or_insert(i);
  }
}

void group_table::bring_back() {
  std::string bytes, left;
  handle place = groups_.add({});
  while (groups_aside_ > 0) {
    if (!aside_.read(bytes, piece_size) || bytes.empty()) {
      throw std::runtime_error("groups of blocks that were set aside on disk cannot be read");
    }
    left += bytes;
    std::string_view saved = left;
    while (groups_.load(saved, place)) {
      place = groups_.add({});
      --groups_aside_;
    }
    left.erase(0, left.size() - saved.size());
  }
  groups_.release(place);
}

block_groups group_table::take(name_lists& names) {
  index_.clear();
  latest_ = {};
  bring_back();
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
