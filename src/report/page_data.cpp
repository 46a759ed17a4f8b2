#include "report/page_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>

#include "report/human.h"
#include "report/page_json.h"
#include "report/page_sentences.h"
#include "report/printable.h"

namespace kiv::report {
namespace {

// How long names may be, tried in this order until what is shown is detailed enough.
struct name_limits {
  std::optional<std::size_t> longest, most_frames;
};
constexpr name_limits all_name_limits[] = {{{}, {}}, {300, 100}, {120, 40}, {60, 16}};

// Lists are detailed enough with so many rows, groups when nothing larger than this share of all is
// put together.
constexpr std::size_t enough_rows = 50, enough_path_rows = 10;
constexpr double fine_share = 0.001;

bool find_runs(const std::vector<const run_profile*>& runs, const page_options& options,
               page_data& page, std::string& error) {
  group_filter filter;
  if (!filter.set(options.filter, error)) return false;
  if (std::ranges::none_of(runs, [&](const auto* run) { return filter.knows_process(*run); })) {
    const std::string process = quoted_name(*options.filter.process);
    error = runs.size() > 1 ? "neither run has a process " + process
                            : "run " + quoted_name(runs[0]->name) + " has no process " + process;
    return false;
  }
  for (const auto* run : runs) {
    page.runs.push_back({run, named_traces(*run, filter, page.names)});
    auto& figures = page.figures.emplace_back();
    for (const auto& trace : page.runs.back().traces) figures.push_back(figures_of(trace));
  }
  return true;
}

// Bytes of JSON of all runs without their lists.
std::size_t heads_size(const page_data& page) {
  std::ostringstream out;
  for (std::size_t run = 0; run < page.runs.size(); ++run) {
    json_writer json(out, json_form::in_page);
    write_json_run(json, *page.runs[run].run, page.options.filter, page.figures[run], {},
                   page_style(*page.shown));
  }
  return out.str().size();
}

// The ids that timelines and histograms name.
named_elsewhere named_ids(const page_data& page) {
  named_elsewhere names;
  for (const auto& run : page.timelines.runs) {
    for (const auto& timeline : run) {
      for (const auto id : timeline.ids) names.emplace_back(group_key::id, id);
    }
  }
  for (const auto& run : page.histograms.runs) {
    for (const auto& trace : run) {
      for (const auto& bar : trace) names.emplace_back(group_key::id, bar.id);
    }
  }
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

// Fills the page with names of these lengths; whether it is detailed enough.
bool fit_page(page_data& page, const std::vector<std::vector<group_list>>& lists,
              const name_limits& limits) {
  page.shown = std::make_unique<shown_names>(page.names, limits.longest, limits.most_frames);
  const std::size_t budget = page.options.budget, heads = heads_size(page);
  const std::size_t left = std::max(budget - std::min(budget, heads), budget / 4);
  page.lists = fitting_lists(lists, *page.shown, left / 2);
  const std::size_t for_page = left - std::min(left, page.lists.bytes);
  page.timelines = fitting_timelines(page.runs, for_page * 7 / 20);
  page.marks = fitting_marks(page.runs, *page.shown, for_page / 20);
  page.histograms = fitting_histograms(page.runs, page.names.size(group_key::id), for_page / 10);
  const std::size_t others = page.timelines.bytes + page.marks.bytes + page.histograms.bytes;
  page.groups = fitting_groups(page.runs, page.names, *page.shown, named_ids(page),
                               for_page - std::min(for_page, others));
  const auto& all = page.lists;
  return heads <= budget / 3 && all.rows >= std::min(all.longest, enough_rows) &&
         all.path_rows >= std::min(all.longest_of_paths, enough_path_rows) &&
         page.groups.name_threshold <= fine_share && page.groups.path_threshold <= fine_share;
}

}  // namespace

bool make_page_data(const std::vector<const run_profile*>& runs, const page_options& options,
                    page_data& into, std::string& error) {
  into.options = options;
  if (!find_runs(runs, options, into, error)) return false;
  const auto lists = all_lists(into.runs, into.names);
  for (const auto& limits : all_name_limits) {
    const bool is_detailed = fit_page(into, lists, limits);
    into.left_out = sentences_of(into, limits.longest, limits.most_frames);
    if (is_detailed) break;
  }
  return true;
}

}  // namespace kiv::report
