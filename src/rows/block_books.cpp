#include "rows/block_books.h"

#include <algorithm>
#include <bit>

namespace kiv::rows {
namespace {

constexpr std::uint64_t temporary_records = 100;

std::int32_t exponent_of(std::uint64_t value) {
  return static_cast<std::int32_t>(std::bit_width(value)) - 1;
}

}  // namespace

std::uint32_t block_books::group_of(const block_row& row) {
  trace_names& names = tables_.names;
  block_group g;
  g.no_free = row.no_free;
  g.id = names.id(row.id_number);
  g.color = names.color(row.id_number, row.color);
  g.line = names.line(row.location);
  g.path = names.path(row.at);
  g.process = names.process(row.at.pid);
  g.query = names.query(row.query_seq);
  const group_key key{g.no_free, g.id, g.color, g.line, g.path, g.process, g.query};
  const auto [at, is_new] =
      groups_.try_emplace(key, static_cast<std::uint32_t>(all_groups_.size()));
  if (is_new) {
    all_groups_.push_back(g);
    peak_of_group_.push_back(peaks_);
    if (g.id >= level_of_id_.size()) level_of_id_.resize(g.id + std::size_t{1});
  }
  return at->second;
}

// What a group had at the peak is copied when it first changes afterwards.
void block_books::change_live(std::uint32_t group, const amount& more, const amount& less) {
  block_group& g = all_groups_[group];
  if (peak_of_group_[group] != peaks_) {
    g[figure::at_peak] = g[figure::live];
    peak_of_group_[group] = peaks_;
  }
  g[figure::live] += more;
  g[figure::live] -= less;
  live_ += more;
  live_ -= less;
  level_of_id_[g.id] += more.bytes - less.bytes;
  timeline_.touch(g.id);
  since_mark_.touch(g.id);
}

void block_books::count(distribution of, const block_group& group, std::uint64_t value,
                        std::uint64_t bytes) {
  const std::int32_t exponent = exponent_of(value);
  const auto [at, is_new] =
      bars_.try_emplace(bar_key{of, group.no_free, group.id, exponent}, p_.histograms.size());
  if (is_new) p_.histograms.push_back({of, group.no_free, group.id, exponent, 0, 0});
  histogram_bar& bar = p_.histograms[at->second];
  bar.blocks += 1;
  bar.bytes += bytes;
}

void block_books::make(const block_row& row) {
  const std::uint32_t group = group_of(row);
  const amount size{1, row.size, row.tot_size};
  all_groups_[group][figure::made] += size;
  change_live(group, size, {});
  count(distribution::size, all_groups_[group], row.size, row.size);
  blocks_[row.record] = {group, row.record, row.size, row.tot_size, row.size, row.tot_size};
}

bool block_books::resize(std::uint64_t made_by, const block_row& row) {
  const auto found = blocks_.find(made_by);
  if (found == blocks_.end()) return false;
  live_block block = found->second;
  blocks_.erase(found);
  change_live(block.group, {1, row.size, row.tot_size}, {1, block.size, block.tot_size});
  all_groups_[block.group].resizes += 1;
  block.size = row.size;
  block.tot_size = row.tot_size;
  blocks_[row.record] = block;
  return true;
}

bool block_books::end(std::uint64_t made_by, std::uint64_t record, char type) {
  const auto found = blocks_.find(made_by);
  if (found == blocks_.end()) return false;
  const live_block block = found->second;
  blocks_.erase(found);
  const amount size{1, block.size, block.tot_size};
  change_live(block.group, {}, size);
  block_group& g = all_groups_[block.group];
  const std::uint64_t life = record - block.made_record;
  if (type == 'f') {
    g[figure::freed] += size;
    if (life <= temporary_records) {
      g[figure::temporary] += {1, block.made_size, block.made_tot_size};
    }
  } else if (type == 'Z') {
    g[figure::reset] += size;
  } else {
    g[g.no_free ? figure::released : figure::left_with_id] += size;
  }
  count(distribution::lifetime, g, life, block.size);
  return true;
}

void block_books::take_mark(const row_mark& mark) {
  program_mark m{mark.record, mark.time, mark.text, live_.bytes, live_.blocks, {}};
  m.changed = since_mark_.take(level_of_id_);
  p_.marks.push_back(std::move(m));
}

void block_books::begin_record(std::uint64_t record) {
  const auto& marks = tables_.marks;
  for (; next_mark_ < marks.size() && marks[next_mark_].record < record; ++next_mark_) {
    take_mark(marks[next_mark_]);
  }
}

void block_books::end_record(std::uint64_t record, std::string_view time,
                             std::uint64_t heap_bytes) {
  p_.records = record;
  if (live_.bytes > p_.peak.live.bytes) {
    p_.peak.live = live_;
    p_.peak.record = record;
    p_.peak.time = time;
    ++peaks_;
  }
  timeline_.add_record(record, time, live_.bytes, heap_bytes, level_of_id_);
}

void block_books::finish() {
  for (; next_mark_ < tables_.marks.size(); ++next_mark_) take_mark(tables_.marks[next_mark_]);
  for (std::size_t i = 0; i < all_groups_.size(); ++i) {
    if (peak_of_group_[i] != peaks_) all_groups_[i][figure::at_peak] = all_groups_[i][figure::live];
  }
  for (const block_group& group : all_groups_) p_.groups.push_back(group);
  p_.timeline = timeline_.finish(level_of_id_);
  blocks_.clear();
}

}  // namespace kiv::rows
