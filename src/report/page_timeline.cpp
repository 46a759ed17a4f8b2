#include "report/page_timeline.h"

#include <algorithm>
#include <numeric>

#include "report/json_size.h"
#include "report/json_writer.h"

namespace kiv::report {
namespace {

struct timeline_limits {
  std::size_t steps, ids;
};
// From the finest to the coarsest.
constexpr timeline_limits all_limits[] = {{1000, 8}, {500, 8}, {250, 8}, {125, 8}, {125, 4},
                                          {60, 4},   {60, 2},  {30, 2},  {30, 1},  {15, 1},
                                          {15, 0},   {8, 0},   {4, 0},   {2, 0},   {1, 0}};

// Markers of a trace.
constexpr std::size_t all_most_marks[] = {200, 100, 50, 20, 10, 5, 2, 1, 0};

// The places of the ids with the highest levels, the highest first.
std::vector<std::uint32_t> highest_ids(const profile& trace, std::size_t most) {
  std::vector<std::uint64_t> highest(trace.ids.size());
  for (const auto& step : trace.timeline) {
    for (const auto& [id, bytes] : step.changed) {
      if (id < highest.size()) highest[id] = std::max(highest[id], bytes);
    }
  }
  std::vector<std::uint32_t> ids;
  for (std::uint32_t id = 0; id < highest.size(); ++id) {
    if (highest[id] > 0) ids.push_back(id);
  }
  std::ranges::stable_sort(
      ids, [&](std::uint32_t a, std::uint32_t b) { return highest[a] > highest[b]; });
  ids.resize(std::min(ids.size(), most));
  return ids;
}

page_timeline timeline_of(const named_trace& named, const timeline_limits& limits) {
  const profile& trace = *named.trace;
  page_timeline timeline;
  const auto ids = highest_ids(trace, limits.ids);
  for (const auto id : ids) {
    timeline.ids.push_back(named.numbers[static_cast<std::size_t>(group_key::id)][id]);
  }
  timeline.levels.resize(ids.size());
  std::vector<std::uint64_t> level(trace.ids.size());
  const std::size_t steps = trace.timeline.size();
  const std::size_t together = std::max<std::size_t>((steps + limits.steps - 1) / limits.steps, 1);
  std::uint64_t highest = 0;
  for (std::size_t i = 0; i < steps; ++i) {
    const timeline_step& step = trace.timeline[i];
    for (const auto& [id, bytes] : step.changed) {
      if (id < level.size()) level[id] = bytes;
    }
    highest = std::max(highest, step.highest_bytes);
    if ((i + 1) % together != 0 && i + 1 != steps) continue;
    timeline.records.push_back(step.last_record);
    timeline.times.push_back(step.time);
    timeline.highest.push_back(highest);
    timeline.last.push_back(step.last_bytes);
    timeline.heap.push_back(step.heap_bytes);
    for (std::size_t id = 0; id < ids.size(); ++id) timeline.levels[id].push_back(level[ids[id]]);
    highest = 0;
  }
  return timeline;
}

std::size_t size_of(const std::vector<std::uint64_t>& numbers) {
  return std::accumulate(
      numbers.begin(), numbers.end(), std::size_t{2},
      [](std::size_t sum, std::uint64_t number) { return sum + json_size(number) + 1; });
}

std::size_t size_of(const page_timeline& timeline) {
  std::size_t size =
      std::string_view(R"({"records":,"times":,"highest":,"last":,"heap":,"ids":[],"levels":[]},)")
          .size();
  for (const auto* numbers :
       {&timeline.records, &timeline.highest, &timeline.last, &timeline.heap}) {
    size += size_of(*numbers);
  }
  for (const auto& time : timeline.times) size += json_text(time, json_form::in_page).size() + 1;
  for (const auto id : timeline.ids) size += json_size(id) + 1;
  for (const auto& levels : timeline.levels) size += size_of(levels) + 1;
  return size;
}

// Bytes that timelines are sure to take.
std::size_t least_size(const std::vector<page_run>& runs, const timeline_limits& limits) {
  constexpr std::size_t of_step = std::string_view(R"("2023-11-14 22:13:20.005",0,0,0,0,)").size();
  std::size_t steps = 0;
  for (const auto& run : runs) {
    for (const auto& trace : run.traces) {
      // Half of the limit is reached at least, where steps become one.
      steps += std::min(trace.trace->timeline.size(), (limits.steps + 1) / 2);
    }
  }
  return steps * of_step;
}

page_timelines timelines_of(const std::vector<page_run>& runs, const timeline_limits& limits) {
  page_timelines page;
  page.most_steps = limits.steps;
  page.most_ids = limits.ids;
  for (const auto& run : runs) {
    auto& timelines = page.runs.emplace_back();
    for (const auto& trace : run.traces) {
      const std::size_t recorded = trace.trace->timeline.size();
      page.recorded_steps = std::max(page.recorded_steps, recorded);
      timelines.push_back(timeline_of(trace, limits));
      page.shortened += timelines.back().records.size() < recorded ? 1 : 0;
      page.bytes += size_of(timelines.back());
    }
  }
  return page;
}

std::size_t size_of(const program_mark& mark, shown_names& names) {
  return std::string_view(R"({"record":,"time":,"text":,"live_bytes":,"live_blocks":},)").size() +
         json_size(mark.record) + json_size(mark.live_bytes) + json_size(mark.live_blocks) +
         json_text(mark.time, json_form::in_page).size() +
         json_text(names.text(mark.text), json_form::in_page).size();
}

page_marks marks_of(const std::vector<page_run>& runs, shown_names& names, std::size_t most) {
  page_marks page;
  for (const auto& run : runs) {
    auto& traces = page.runs.emplace_back();
    for (const auto& trace : run.traces) {
      const auto& all = trace.trace->marks;
      auto& shown = traces.emplace_back();
      const std::size_t count = std::min(all.size(), most);
      for (std::size_t i = 0; i < count; ++i) {
        const auto& mark = all[i * all.size() / count];
        shown.push_back(mark);
        page.bytes += size_of(mark, names);
      }
      page.shown += count;
      page.all += all.size();
    }
  }
  return page;
}

}  // namespace

page_timelines fitting_timelines(const std::vector<page_run>& runs, std::size_t budget) {
  page_timelines page;
  for (const auto& limits : all_limits) {
    if (&limits != std::end(all_limits) - 1 && least_size(runs, limits) > budget) continue;
    page = timelines_of(runs, limits);
    if (page.bytes <= budget) break;
  }
  return page;
}

page_marks fitting_marks(const std::vector<page_run>& runs, shown_names& names,
                         std::size_t budget) {
  page_marks page;
  for (const std::size_t most : all_most_marks) {
    page = marks_of(runs, names, most);
    if (page.bytes <= budget) break;
  }
  return page;
}

}  // namespace kiv::report
