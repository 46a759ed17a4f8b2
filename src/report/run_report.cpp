#include "report/run_report.h"

#include <algorithm>

#include "report/printable.h"

namespace kiv::report {
namespace {

std::vector<std::vector<std::uint32_t>> process_ids_of(const std::vector<named_trace>& traces,
                                                       const name_book& names) {
  std::vector<std::vector<std::uint32_t>> all(names.size(group_key::process));
  for (const auto& named : traces) {
    const auto& numbers = named.numbers[static_cast<std::size_t>(group_key::process)];
    for (std::size_t place = 0; place < named.trace->processes.size(); ++place) {
      all[numbers[place]].push_back(named.trace->processes[place].pid);
    }
  }
  for (auto& ids : all) {
    std::ranges::sort(ids);
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  }
  return all;
}

}  // namespace

trace_figures figures_of(const named_trace& named, const group_sums::of_trace& sums) {
  trace_figures figures;
  figures.trace = named.trace;
  const auto sum = [&](figure of) { return split_amount{sums.with_free[of], sums.no_free[of]}; };
  figures.allocated = sum(figure::made);
  figures.freed = sum(figure::freed);
  figures.leaked.with_free = sums.with_free[figure::left_with_id] + sums.with_free[figure::live];
  figures.reset = sum(figure::reset);
  figures.released = sum(figure::released);
  figures.live = sum(figure::live);
  figures.at_peak = sum(figure::at_peak);
  figures.temporary = sum(figure::temporary);
  // Place 0 of a list is the unknown.
  const auto known = [](std::size_t count) { return count > 0 ? count - 1 : 0; };
  figures.processes = known(named.trace->processes.size());
  figures.ids = known(named.trace->ids.size());
  return figures;
}

std::vector<list_choice> chosen_lists(std::vector<group_key> by, std::vector<measure> of,
                                      bool for_people) {
  if (by.empty() && of.empty() && for_people) {
    return {{measure::leaked, group_key::line}, {measure::leaked, group_key::path},
            {measure::peak, group_key::id},     {measure::peak, group_key::line},
            {measure::peak, group_key::path},   {measure::temporary, group_key::line}};
  }
  if (by.empty()) by = {group_key::id, group_key::line, group_key::path};
  if (of.empty()) of = {measure::leaked, measure::peak, measure::temporary};
  std::vector<list_choice> lists;
  for (const auto measure : of) {
    for (const auto key : by) lists.push_back({measure, key});
  }
  return lists;
}

bool is_complete(const run_profile& run) {
  return !run.traces.empty() && std::ranges::all_of(run.traces, &profile::complete);
}

bool make_report(const run_profile& run, const report_options& options, run_report& into,
                 std::string& error) {
  group_filter filter;
  if (!filter.set(options.filter, run, error)) return false;
  into.run = &run;
  into.filter = options.filter;
  into.complete = is_complete(run);
  into.from_rows = std::ranges::any_of(run.traces, &profile::from_rows);
  const auto traces = named_traces(run, filter, into.names);
  const group_sums sums = sum_up(traces, into.names, options.lists);
  for (std::size_t i = 0; i < traces.size(); ++i) {
    into.traces.push_back(figures_of(traces[i], sums.traces[i]));
  }
  into.process_ids = process_ids_of(traces, into.names);
  into.lists = make_lists(sums, into.names, options.lists, options.top);
  return true;
}

}  // namespace kiv::report
