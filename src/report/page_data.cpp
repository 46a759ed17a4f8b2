#include "report/page_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <string_view>

#include "report/human.h"
#include "report/page_json.h"
#include "report/page_sentences.h"
#include "report/printable.h"

namespace kiv::report {
namespace {

// Tried in this order until what is shown is detailed enough.
constexpr name_limits all_name_limits[] = {{{}, {}}, {300, 100}, {120, 40}, {60, 16}};

// What a page's parts get of the room that the traces' figures leave, in hundredths.
constexpr std::size_t for_lists = 50, for_timelines = 18, for_marks = 3, for_histograms = 5;

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
    const auto& traces = page.runs.back().traces;
    const group_sums sums = sum_up(traces, page.names, {});
    for (std::size_t i = 0; i < traces.size(); ++i) {
      figures.push_back(figures_of(traces[i], sums.traces[i]));
    }
  }
  return true;
}

// Bytes of JSON that the runs take without their lists, groups, timelines, marks and histograms.
constexpr std::size_t around_trace =
    std::string_view(R"({"timeline":,"marks":[],"histograms":[]},)").size();
std::size_t heads_size(const page_data& page, shown_names& shown) {
  std::ostringstream out;
  std::size_t others = 0;
  for (std::size_t run = 0; run < page.runs.size(); ++run) {
    json_writer json(out, json_form::in_page);
    write_json_run(json, *page.runs[run].run, page.options.filter, page.figures[run], {},
                   page_style(shown));
    others += page.figures[run].size() * around_trace;
  }
  return out.str().size() + others;
}

// The ids that timelines and histograms name.
named_elsewhere named_ids(const page_content& content) {
  named_elsewhere names;
  for (const auto& run : content.timelines.runs) {
    for (const auto& timeline : run) {
      for (const auto id : timeline.ids) names.emplace_back(group_key::id, id);
    }
  }
  for (const auto& run : content.histograms.runs) {
    for (const auto& trace : run) {
      for (const auto& bar : trace) names.emplace_back(group_key::id, bar.id);
    }
  }
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

// How much can be told from a page: at most 1, which is enough.
struct detail {
  double of_lists = 0, of_paths = 0, of_groups = 0, of_traces = 0;

  double least() const { return std::min({of_lists, of_paths, of_groups, of_traces}); }
};

// A list is detailed enough with so many rows, groups when nothing larger than this share of all is
// put together, traces when their figures and texts leave this part of the room to all else.
constexpr std::size_t enough_rows = 50, enough_path_rows = 10;
constexpr double fine_share = 0.001, room_for_traces = 0.4;

double part(std::size_t have, std::size_t wanted) {
  return have >= wanted ? 1 : static_cast<double>(have) / static_cast<double>(wanted);
}

detail detail_of(const page_content& content, std::size_t heads, std::size_t budget) {
  const page_lists& lists = content.lists;
  double put_together = 0;
  for (std::size_t key = 0; key < key_count; ++key) {
    const auto& [kept, all] = content.groups.kept[key];
    if (kept < all) put_together = std::max(put_together, content.groups.thresholds[key]);
  }
  return {part(lists.rows, std::min(lists.longest, enough_rows)),
          part(lists.path_rows, std::min(lists.longest_of_paths, enough_path_rows)),
          put_together <= fine_share ? 1 : fine_share / put_together,
          part(static_cast<std::size_t>(room_for_traces * static_cast<double>(budget)), heads)};
}

class page_maker {
 public:
  explicit page_maker(const page_data& page) : page_(page), lists_(page.runs, page.names) {}

  // The page's content with names of these lengths.
  page_content content(const name_limits& limits, detail& detailed) const {
    page_content made;
    made.shown = std::make_unique<shown_names>(page_.names, limits);
    const std::size_t budget = page_.options.budget, heads = heads_size(page_, *made.shown);
    const std::size_t left = std::max(budget - std::min(budget, heads), budget / 4);
    made.lists = lists_.fitting(*made.shown, left * for_lists / 100);
    const std::size_t pictures = fit_pictures(made, left, left - std::min(left, made.lists.bytes));
    // What the pictures do not need, or need more, is the lists' gain or loss.
    made.lists = lists_.fitting(*made.shown, left - std::min(left, pictures));
    detailed = detail_of(made, heads, budget);
    return made;
  }

 private:
  // Gives the bytes of JSON of all but the lists.
  std::size_t fit_pictures(page_content& made, std::size_t left, std::size_t room) const {
    made.timelines = fitting_timelines(page_.runs, left * for_timelines / 100);
    made.marks = fitting_marks(page_.runs, *made.shown, left * for_marks / 100);
    made.histograms = fitting_histograms(page_.runs, page_.names.size(group_key::id),
                                         left * for_histograms / 100);
    const std::size_t spent = made.timelines.bytes + made.marks.bytes + made.histograms.bytes;
    made.groups = fitting_groups(page_.runs, page_.names, *made.shown, named_ids(made),
                                 room - std::min(room, spent));
    return spent + made.groups.bytes;
  }

  const page_data& page_;
  whole_lists lists_;
};

// Names are cut only if a good deal more can be told then.
constexpr double worth_cutting = 1.5;

}  // namespace

bool make_page_data(const std::vector<const run_profile*>& runs, const page_options& options,
                    page_data& into, std::string& error) {
  into.options = options;
  if (!find_runs(runs, options, into, error)) return false;
  const page_maker maker(into);
  detail best;
  for (const auto& limits : all_name_limits) {
    detail detailed;
    auto content = maker.content(limits, detailed);
    if (into.content.shown && detailed.least() < best.least() * worth_cutting) continue;
    best = detailed;
    into.left_out = sentences_of(content, options.filter, limits);
    into.content = std::move(content);
    if (best.least() >= 1) break;
  }
  return true;
}

}  // namespace kiv::report
