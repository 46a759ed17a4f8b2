// What the profiler hands over when the replay is over: numbers become places in lists of names.

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <tuple>

#include "profile/name_lists.h"
#include "profile/profiler.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"
#include "trace/kiv_hdr.h"
#include "util/time_text.h"

namespace kiv {

namespace {

// Levels by the numbers of ids -> levels by the places of their names, which ids may share.
class levels_by_place {
 public:
  levels_by_place(const std::vector<std::uint32_t>& place_of_slot, std::size_t places)
      : place_of_slot_(place_of_slot), by_slot_(place_of_slot.size()), by_place_(places) {}

  std::vector<id_level> next(const std::vector<id_level>& changed) {
    std::vector<std::uint32_t> places;
    for (const id_level& level : changed) {
      const std::uint32_t place = place_of_slot_[level.id];
      by_place_[place] += level.bytes - by_slot_[level.id];
      by_slot_[level.id] = level.bytes;
      places.push_back(place);
    }
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    std::vector<id_level> levels;
    levels.reserve(places.size());
    for (const std::uint32_t place : places) levels.push_back({place, by_place_[place]});
    return levels;
  }

 private:
  const std::vector<std::uint32_t>& place_of_slot_;
  std::vector<std::uint64_t> by_slot_;
  std::vector<std::uint64_t> by_place_;
};

}  // namespace

void profiler::finish(profile& into) {
  close_query(group_key::no_query);
  name_lists names(reader_);

  into.groups = groups_.take(names);

  std::vector<std::uint32_t> place_of_slot;
  place_of_slot.reserve(ids_.size());
  for (const id_state& id : ids_) place_of_slot.push_back(names.id(id.number));

  into.timeline = timeline_.finish(levels_);
  levels_by_place of_steps(place_of_slot, names.id_count());
  for (timeline_step& step : into.timeline) step.changed = of_steps.next(step.changed);
  levels_by_place of_marks(place_of_slot, names.id_count());
  minute_clock clock;
  for (mark& one : marks_) {
    into.marks.push_back({one.record, clock.text(one.time), std::move(one.text), one.live_bytes,
                          one.live_blocks, of_marks.next(one.changed)});
  }

  std::map<std::tuple<std::size_t, std::uint32_t, std::size_t>, bar> histograms;
  for (std::size_t slot = 0; slot < ids_.size(); ++slot) {
    for (std::size_t which = 0; which < ids_[slot].distributions.size(); ++which) {
      const std::vector<bar>& counted = ids_[slot].distributions[which];
      for (std::size_t exponent = 0; exponent < counted.size(); ++exponent) {
        if (counted[exponent].blocks == 0) continue;
        bar& sum = histograms[{which, place_of_slot[slot], exponent}];
        sum.blocks += counted[exponent].blocks;
        sum.bytes += counted[exponent].bytes;
      }
    }
  }
  for (const auto& [key, sum] : histograms) {
    const auto& [which, id, exponent] = key;
    into.histograms.push_back({static_cast<distribution>(which / 2), which % 2 == 1, id,
                               static_cast<std::int32_t>(exponent) - 1, sum.blocks, sum.bytes});
  }
  for (const auto& [key, total] : heap_) {
    into.heap.push_back({key.gap, key.path, key.process, total.first, total.second});
  }
  // The table gives them in another order in every process.
  std::ranges::sort(into.heap, {},
                    [](const heap_change& h) { return std::tuple(h.gap, h.path, h.process); });

  names.finish(into);
  paths_.finish(into);
  into.processes = std::move(processes_);

  const kiv_hdr& header = reader_.header();
  into.run = header.runid();
  into.pid = header.pid();
  into.program = header.progname();
  into.environment = header.lom();
  into.account = header.pacc();
  into.host = header.hostname();
  into.user = header.user();
  into.start = time_text(header.start());
  // A trace that is open has no end yet: what is known of it ends with its last time stamp.
  const bool is_open = !header.closed() && header.end().secs == 0 && header.start().secs != 0;
  into.end = time_text(is_open ? reader_.now() : header.end());
  into.records = reader_.reserve_ids().global().rec.value;
  into.heap_bytes = reader_.reserve_ids().sbrk().total;
  into.gap_bytes = static_cast<std::int64_t>(reader_.reserve_ids().gap().total);
  into.peak = peak_;
  if (peak_.record > 0) into.peak.time = clock.text(peak_time_);

  if (groups_.blocks_folded() > 0) {
    into.notes.push_back(fmt::format("lines, colours, call paths and SQL statements of {} blocks",
                                     groups_.blocks_folded()));
  }
  if (paths_.calls_left_out() > 0) {
    into.notes.push_back(fmt::format("{} calls in call paths", paths_.calls_left_out()));
  }
  if (marks_left_out_ > 0) {
    into.notes.push_back(fmt::format("{} markers of the program", marks_left_out_));
  }
}

}  // namespace kiv
