#include "profile/timeline.h"

#include <algorithm>
#include <utility>

#include "util/time_text.h"

namespace kiv {

void id_levels::change(slot id, std::int64_t bytes) {
  if (id >= states_.size()) states_.resize(id + 1);
  state& changed = states_[id];
  changed.bytes += static_cast<std::uint64_t>(bytes);
  if (!changed.step) {
    changed.step = true;
    in_step_.push_back(id);
  }
  if (!changed.mark) {
    changed.mark = true;
    since_mark_.push_back(id);
  }
}

std::vector<id_level> id_levels::take(std::vector<slot>& changed, bool state::*flag) {
  std::vector<id_level> levels;
  levels.reserve(changed.size());
  for (const slot id : changed) {
    levels.push_back({id, states_[id].bytes});
    states_[id].*flag = false;
  }
  changed.clear();
  return levels;
}

void timeline::end_step(id_levels& levels) {
  current_.changed = levels.changed_in_step();
  levels_ += current_.changed.size();
  steps_.push_back(std::move(current_));
  current_ = {};
  records_ = 0;
  while (steps_.size() > 1 && (steps_.size() >= max_steps || levels_ > max_levels)) halve();
}

void timeline::halve() {
  std::size_t kept = 0;
  levels_ = 0;
  for (std::size_t i = 0; i < steps_.size(); i += 2) {
    step one = std::move(steps_[i]);
    if (i + 1 < steps_.size()) {
      step& next = steps_[i + 1];
      next.highest_bytes = std::max(one.highest_bytes, next.highest_bytes);
      merge(one.changed, next.changed);
      one = std::move(next);
    }
    levels_ += one.changed.size();
    steps_[kept++] = std::move(one);
  }
  steps_.resize(kept);
  records_per_step_ *= 2;
}

void timeline::merge(const std::vector<id_level>& earlier, std::vector<id_level>& later) {
  ++merges_;
  const auto is_new = [&](std::uint32_t id) {
    if (id >= merged_in_.size()) merged_in_.resize(id + std::size_t{1});
    return std::exchange(merged_in_[id], merges_) != merges_;
  };
  for (const id_level& level : later) is_new(level.id);
  for (const id_level& level : earlier) {
    if (is_new(level.id)) later.push_back(level);
  }
}

std::vector<timeline_step> timeline::finish(id_levels& levels) {
  if (records_ > 0) end_step(levels);
  minute_clock clock;
  std::vector<timeline_step> all;
  all.reserve(steps_.size());
  for (step& one : steps_) {
    all.push_back({one.last_record, clock.text(one.time), one.highest_bytes, one.last_bytes,
                   one.heap_bytes, std::move(one.changed)});
  }
  steps_.clear();
  return all;
}

}  // namespace kiv
