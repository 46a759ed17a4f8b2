#include "report/group_lists.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kiv::report {
namespace {

group_list list_of(const list_sums& sums, const name_book& names, const list_choice& choice,
                   std::optional<std::size_t> top) {
  group_list list;
  list.by = choice.by;
  list.of = choice.of;
  for (const list_row& row : sums.rows()) {
    list.total += row.sum;
    if (row.sum.sum() != amount{}) list.rows.push_back(row);
  }
  std::ranges::sort(list.rows, [&](const list_row& a, const list_row& b) {
    const amount sum_a = a.sum.sum(), sum_b = b.sum.sum();
    if (sum_a.bytes != sum_b.bytes) return sum_a.bytes > sum_b.bytes;
    if (sum_a.blocks != sum_b.blocks) return sum_a.blocks > sum_b.blocks;
    return names.compare(choice.by, a.name, b.name) < 0;
  });
  if (top && *top < list.rows.size()) {
    list.left_out = list.rows.size() - *top;
    for (std::size_t i = *top; i < list.rows.size(); ++i) list.left_out_sum += list.rows[i].sum;
    list.rows.resize(*top);
  }
  return list;
}

}  // namespace

std::vector<named_trace> named_traces(const run_profile& run, const group_filter& filter,
                                      name_book& names) {
  std::vector<named_trace> traces;
  for (const auto& trace : run.traces) {
    traces.push_back({&trace, names.add(trace), filter.kept(trace)});
  }
  return traces;
}

std::uint32_t number_of(const named_trace& trace, const group_names& group, group_key key) {
  const auto place = [&] {
    switch (key) {
      case group_key::id:
        return group.id;
      case group_key::color:
        return group.color;
      case group_key::line:
        return group.line;
      case group_key::function:
      case group_key::path:
        return group.path;
      case group_key::process:
        return group.process;
      case group_key::query:
        return group.query;
    }
    return 0u;
  }();
  const auto& numbers = trace.numbers[static_cast<std::size_t>(key)];
  return numbers[place < numbers.size() ? place : 0];
}

list_sums::list_sums(std::size_t names) {
  constexpr std::size_t most_rows_at_once = 16'384;
  if (names > most_rows_at_once) {
    row_of_.resize(names);
    return;
  }
  rows_.resize(names);
  for (std::size_t i = 0; i < names; ++i) rows_[i].name = static_cast<std::uint32_t>(i);
}

group_sums sum_up(const std::vector<named_trace>& traces, const name_book& names,
                  const std::vector<list_choice>& choices) {
  group_sums sums;
  std::array<std::vector<std::size_t>, measure_count> choices_of;
  for (std::size_t c = 0; c < choices.size(); ++c) {
    sums.lists.emplace_back(names.size(choices[c].by));
    choices_of[static_cast<std::size_t>(choices[c].of)].push_back(c);
  }
  for (const auto& trace : traces) {
    auto& totals = sums.traces.emplace_back();
    for (std::size_t i = 0; i < trace.kept.size(); ++i) {
      if (!trace.kept[i]) continue;
      const block_group group = trace.trace->groups[i];
      (group.no_free ? totals.no_free : totals.with_free) += group;
      for (std::size_t of = 0; of < measure_count; ++of) {
        if (choices_of[of].empty()) continue;
        const amount counted = measured(group, static_cast<measure>(of));
        if (counted == amount{}) continue;
        for (const std::size_t c : choices_of[of]) {
          sums.lists[c][number_of(trace, group, choices[c].by)].add(group.no_free, counted);
        }
      }
    }
  }
  return sums;
}

std::vector<split_amount> sums_by(const std::vector<named_trace>& traces, const name_book& names,
                                  group_key key, measure of) {
  const group_sums sums = sum_up(traces, names, {{of, key}});
  std::vector<split_amount> all(names.size(key));
  for (const auto& [name, sum] : sums.lists.front().rows()) all[name] = sum;
  return all;
}

std::vector<group_list> make_lists(const group_sums& sums, const name_book& names,
                                   const std::vector<list_choice>& choices,
                                   std::optional<std::size_t> top) {
  std::vector<group_list> lists;
  for (std::size_t c = 0; c < choices.size(); ++c) {
    lists.push_back(list_of(sums.lists[c], names, choices[c], top));
  }
  return lists;
}

}  // namespace kiv::report
