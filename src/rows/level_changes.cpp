#include "rows/level_changes.h"

#include <algorithm>
#include <utility>

namespace kiv::rows {

void level_changes::touch(std::uint32_t id) {
  if (id >= touched_.size()) {
    touched_.resize(id + std::size_t{1});
    before_.resize(id + std::size_t{1});
  }
  if (touched_[id]) return;
  touched_[id] = true;
  ids_.push_back(id);
}

std::vector<id_level> level_changes::take(const std::vector<std::uint64_t>& levels) {
  std::vector<id_level> changed;
  std::ranges::sort(ids_);
  for (const std::uint32_t id : ids_) {
    touched_[id] = false;
    if (levels[id] == before_[id]) continue;
    before_[id] = levels[id];
    changed.push_back({id, levels[id]});
  }
  ids_.clear();
  return changed;
}

void timeline_builder::add_record(std::uint64_t record, std::string_view time,
                                  std::uint64_t live_bytes, std::uint64_t heap_bytes,
                                  const std::vector<std::uint64_t>& levels) {
  now_.last_record = record;
  if (now_.time != time) now_.time = time;
  now_.highest_bytes = std::max(now_.highest_bytes, live_bytes);
  now_.last_bytes = live_bytes;
  now_.heap_bytes = heap_bytes;
  if (++records_ == width_) end_step(levels);
}

void timeline_builder::end_step(const std::vector<std::uint64_t>& levels) {
  if (steps_.size() == max_steps) {
    halve();
    // The records at hand are but the first half of a step now.
    if (records_ < width_ && records_ > 0) return;
  }
  now_.changed = changes_.take(levels);
  steps_.push_back(std::exchange(now_, {}));
  records_ = 0;
}

// What two steps changed together is what differs from the step before both.
void timeline_builder::halve() {
  std::vector<std::uint64_t> levels;
  std::size_t into = 0;
  for (std::size_t i = 0; i < steps_.size(); i += 2, ++into) {
    timeline_step& first = steps_[i];
    timeline_step both = std::move(i + 1 < steps_.size() ? steps_[i + 1] : first);
    std::vector<id_level> changed;
    if (i + 1 < steps_.size()) {
      both.highest_bytes = std::max(both.highest_bytes, first.highest_bytes);
      // Entries of the later step come first, and of one id the first is kept.
      changed = std::move(both.changed);
      changed.insert(changed.end(), first.changed.begin(), first.changed.end());
      std::ranges::stable_sort(changed, {}, &id_level::id);
      changed.erase(std::unique(changed.begin(), changed.end(),
                                [](const id_level& a, const id_level& b) { return a.id == b.id; }),
                    changed.end());
    } else {
      changed = std::move(both.changed);
    }
    both.changed.clear();
    for (const auto& c : changed) {
      if (c.id >= levels.size()) levels.resize(c.id + std::size_t{1});
      if (levels[c.id] == c.bytes) continue;
      levels[c.id] = c.bytes;
      both.changed.push_back(c);
    }
    steps_[into] = std::move(both);
  }
  steps_.resize(into);
  width_ *= 2;
}

std::vector<timeline_step> timeline_builder::finish(const std::vector<std::uint64_t>& levels) {
  if (records_ > 0) end_step(levels);
  if (records_ > 0) end_step(levels);
  return std::move(steps_);
}

}  // namespace kiv::rows
