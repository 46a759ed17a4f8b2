#include "report/page_histograms.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <tuple>

#include "report/json_size.h"
#include "report/page_groups.h"

namespace kiv::report {
namespace {

std::uint32_t id_of(const named_trace& trace, const histogram_bar& bar) {
  const auto& numbers = trace.numbers[static_cast<std::size_t>(group_key::id)];
  return numbers[bar.id < numbers.size() ? bar.id : 0];
}

std::size_t size_of(const page_bar& bar) {
  return std::string_view(
             R"({"of":"lifetime","no_free":false,"id":1000,"exponent":10,"blocks":,"bytes":},)")
             .size() +
         json_size(bar.blocks) + json_size(bar.bytes);
}

std::vector<page_bar> bars_of(const named_trace& trace, const std::vector<bool>& kept) {
  std::map<std::tuple<distribution, bool, std::uint32_t, std::int32_t>, page_bar> bars;
  for (const auto& bar : trace.trace->histograms) {
    const std::uint32_t number = id_of(trace, bar);
    const std::uint32_t id = kept[number] ? number : others_number;
    auto& sum = bars.try_emplace({bar.of, bar.no_free, id, bar.exponent},
                                 page_bar{bar.of, bar.no_free, id, bar.exponent, 0, 0})
                    .first->second;
    sum.blocks += bar.blocks;
    sum.bytes += bar.bytes;
  }
  std::vector<page_bar> list;
  list.reserve(bars.size());
  for (const auto& [place, bar] : bars) list.push_back(bar);
  return list;
}

// Numbers 0, 1, ... by falling weight; those without any are left out.
std::vector<std::uint32_t> by_weight(const std::vector<std::uint64_t>& weights) {
  std::vector<std::uint32_t> order;
  for (std::uint32_t i = 0; i < weights.size(); ++i) {
    if (weights[i] > 0) order.push_back(i);
  }
  std::ranges::stable_sort(
      order, [&](std::uint32_t a, std::uint32_t b) { return weights[a] > weights[b]; });
  return order;
}

class histogram_maker {
 public:
  histogram_maker(const std::vector<page_run>& runs, std::size_t id_count) : runs_(runs) {
    std::vector<std::uint64_t> of_ids(id_count), of_traces;
    for (const auto& run : runs) {
      for (const auto& trace : run.traces) {
        auto& of_trace = of_traces.emplace_back();
        for (const auto& bar : trace.trace->histograms) {
          of_ids[id_of(trace, bar)] += bar.blocks;
          of_trace += bar.blocks;
        }
      }
    }
    id_count_ = of_ids.size();
    ids_ = by_weight(of_ids);
    traces_ = by_weight(of_traces);
    trace_count_ = of_traces.size();
  }

  std::size_t ids() const { return ids_.size(); }
  std::size_t traces() const { return traces_.size(); }

  page_histograms with(std::size_t most_ids, std::size_t most_traces) const {
    page_histograms page;
    page.all_ids = ids_.size();
    page.all_traces = traces_.size();
    page.ids = std::min(most_ids, page.all_ids);
    page.traces = std::min(most_traces, page.all_traces);
    std::vector<bool> id_kept(id_count_), trace_kept(trace_count_);
    for (std::size_t i = 0; i < page.ids; ++i) id_kept[ids_[i]] = true;
    for (std::size_t i = 0; i < page.traces; ++i) trace_kept[traces_[i]] = true;
    std::size_t number = 0;
    for (const auto& run : runs_) {
      auto& of_run = page.runs.emplace_back();
      for (const auto& trace : run.traces) {
        auto& bars = of_run.emplace_back();
        if (trace_kept[number++]) bars = bars_of(trace, id_kept);
        for (const auto& bar : bars) page.bytes += size_of(bar);
      }
    }
    return page;
  }

 private:
  const std::vector<page_run>& runs_;
  std::size_t id_count_ = 0, trace_count_ = 0;
  std::vector<std::uint32_t> ids_, traces_;  // the largest first
};

}  // namespace

page_histograms fitting_histograms(const std::vector<page_run>& runs, std::size_t id_count,
                                   std::size_t budget) {
  const histogram_maker maker(runs, id_count);
  std::size_t ids = maker.ids(), traces = maker.traces();
  page_histograms page = maker.with(ids, traces);
  while (page.bytes > budget && ids > 0) page = maker.with(ids = ids * 3 / 4, traces);
  while (page.bytes > budget && traces > 0) page = maker.with(ids, traces = traces * 3 / 4);
  return page;
}

}  // namespace kiv::report
