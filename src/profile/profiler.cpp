#include "profile/profiler.h"

#include <bit>

#include "replay/kiv_process.h"
#include "replay/kiv_query.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"
#include "util/modular.h"

namespace kiv {

namespace {

constexpr std::size_t max_marks = 10'000;
constexpr std::size_t max_mark_levels = std::size_t{256} * 1024;

}  // namespace

std::uint32_t profiler::slot_of(std::uint32_t id) {
  if (const std::uint32_t* known = slots_.find(id)) return *known;
  const auto slot = static_cast<std::uint32_t>(ids_.size());
  ids_.emplace_back().number = id;
  slots_.assign(id, slot);
  return slot;
}

std::uint32_t profiler::current_process() {
  const std::uint32_t* known = process_of_pid_.find(reader_.cc_curr_proc()->pid());
  return known == nullptr ? 0 : *known;
}

void profiler::process_started(const KivProcess& process) {
  process_of_pid_.assign(process.pid(), static_cast<std::uint32_t>(processes_.size()));
  processes_.push_back({process.pid(), process.session_name()});
}

group_table::handle profiler::group_of(const memory_change& made) {
  group_key key;
  key.location = made.location;
  key.id = made.id;
  key.color = made.color;
  key.path = paths_.current(*reader_.cc_curr_proc());
  key.process = current_process();
  if (query_open_) key.query = group_key::open_query;
  key.no_free = made.type == kiv_e_malloc_nf;
  const group_table::handle group = groups_.find_or_add(key);
  if (query_open_) groups_of_query_.insert(group);
  return group;
}

void profiler::add_block(group_table::handle group, const memory_change& made) {
  const amount one{1, made.size, made.tot_size};
  groups_.figures().make_block(group, made.size, made.tot_size);
  live_ += one;
  const std::uint32_t slot = slot_of(made.id);
  levels_.change(slot, static_cast<std::int64_t>(made.size));
  count_in_bar(slot, distribution::size, made.type == kiv_e_malloc_nf, made.size, made.size);
}

void profiler::block_made(block_handle block, const memory_change& made) {
  const group_table::handle group = group_of(made);
  add_block(group, made);
  notes_.set(block, group, made.record);
  recent_.made(made.record,
               {static_cast<std::uint32_t>(made.size), static_cast<std::uint32_t>(made.tot_size)});
  if (query_open_) blocks_of_query_.push_back(block);
}

// It is never ended, so it needs no note.
void profiler::block_refused(const memory_change& made) {
  const group_table::handle group = group_of(made);
  add_block(group, made);
}

void profiler::block_resized(block_handle block, const memory_change& resized) {
  const group_table::handle group = notes_.group(block);
  const auto size_change = static_cast<std::uint64_t>(resized.size_change);
  const auto tot_size_change = static_cast<std::uint64_t>(resized.tot_size_change);
  groups_.figures().resize_block(group, size_change, tot_size_change);
  live_ += {0, size_change, tot_size_change};
  levels_.change(slot_of(groups_.id(group)), resized.size_change);
}

void profiler::block_ended(block_handle block, const live_block& ended, std::uint64_t cause,
                           kiv_type by) {
  const group_table::handle group = notes_.group(block);
  const amount one{1, ended.size, ended.tot_size};
  live_ -= one;
  compact_groups& groups = groups_.figures();
  const bool no_free = groups_.no_free(group);
  const std::uint64_t life = cause - notes_.made(block);
  if (by == kiv_e_free) {
    groups.end_block(group, figure::freed, one);
    if (life <= recent_sizes::temporary_span) {
      const recent_sizes::sizes& made = recent_.of(notes_.made(block));
      groups.count_temporary(group, {1, made.size, made.tot_size});
    }
  } else if (by == kiv_e_reset_id) {
    groups.end_block(group, figure::reset, one);
  } else {
    groups.end_block(group, no_free ? figure::released : figure::left_with_id, one);
  }
  const std::uint32_t slot = slot_of(groups_.id(group));
  levels_.change(slot, -std::int64_t{ended.size});
  count_in_bar(slot, distribution::lifetime, no_free, life, ended.size);
}

void profiler::memory_changed(const memory_change& change) {
  if (change.record == 0) return;
  if (live_.bytes > peak_.live.bytes) {
    peak_.live = live_;
    peak_.record = change.record;
    peak_time_ = reader_.now();
    groups_.figures().peak_reached();
  }
  // The blocks of an id that is given back end behind this.
  if (change.type != kiv_e_free_id && change.type != kiv_e_reset_id) record_step(change.record);
}

void profiler::id_gave_back(const KivMalid& /*id*/) {
  record_step(reader_.reserve_ids().global().rec.value);
}

void profiler::record_step(std::uint64_t record) {
  timeline_.record(record, reader_.now(), live_.bytes, reader_.reserve_ids().sbrk().total, levels_);
}

void profiler::count_in_bar(std::uint32_t slot, distribution of, bool no_free, std::uint64_t value,
                            std::uint64_t bytes) {
  const std::size_t which = static_cast<std::size_t>(of) * 2 + (no_free ? 1 : 0);
  std::vector<bar>& counted = ids_[slot].distributions[which];
  const auto place = static_cast<std::size_t>(std::bit_width(value));
  if (place >= counted.size()) counted.resize(place + 1);
  ++counted[place].blocks;
  counted[place].bytes += bytes;
}

void profiler::count_heap_change(bool gap, std::int64_t bytes) {
  const heap_key key{gap, paths_.current(*reader_.cc_curr_proc()), current_process()};
  auto& [count, total] = heap_[key];
  ++count;
  total = wrapping_add(total, bytes);
}

void profiler::heap_grew(const KivSbrk& event) { count_heap_change(false, event.size); }

void profiler::heap_left_gap(const KivSbrkGap& event) {
  count_heap_change(true, wrapping_sub(event.c_sbrk, event.l_sbrk));
}

void profiler::query_opened() {
  close_query(group_key::no_query);
  query_open_ = true;
}

void profiler::query_ended(const KivQueryEvent& bracket) { close_query(bracket.qid()); }

// Which statement a bracket belongs to is known when it ends: until then its groups are apart.
void profiler::close_query(std::uint64_t query) {
  query_open_ = false;
  absl::flat_hash_map<group_table::handle, group_table::handle> moved;
  for (const group_table::handle group : groups_of_query_) {
    moved.emplace(group, groups_.set_query(group, query));
  }
  // A block may have ended since, and its handle may be another's that was made in the bracket.
  for (const block_handle block : blocks_of_query_) {
    group_table::handle& group = notes_.group(block);
    if (const auto entry = moved.find(group); entry != moved.end()) group = entry->second;
  }
  blocks_of_query_.clear();
  groups_of_query_.clear();
}

void profiler::program_marker(std::string_view text) {
  if (marks_.size() >= max_marks || mark_levels_ > max_mark_levels) {
    ++marks_left_out_;
    return;
  }
  const std::uint64_t record = reader_.reserve_ids().global().rec.value;
  marks_.push_back({record, reader_.now(), std::string(text), live_.bytes, live_.blocks,
                    levels_.changed_since_mark()});
  mark_levels_ += marks_.back().changed.size();
}

}  // namespace kiv
