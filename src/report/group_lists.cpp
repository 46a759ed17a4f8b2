#include "report/group_lists.h"

#include <algorithm>

namespace kiv::report {

std::vector<named_trace> named_traces(const run_profile& run, const group_filter& filter,
                                      name_book& names) {
  std::vector<named_trace> traces;
  for (const auto& trace : run.traces) {
    traces.push_back({&trace, names.add(trace), filter.kept(trace)});
  }
  return traces;
}

std::uint32_t number_of(const named_trace& trace, const block_group& group, group_key key) {
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

std::vector<split_amount> sums_by(const std::vector<named_trace>& traces, const name_book& names,
                                  group_key key, measure of) {
  std::vector<split_amount> sums(names.size(key));
  for (const auto& trace : traces) {
    for (std::size_t i = 0; i < trace.kept.size(); ++i) {
      const block_group& group = trace.trace->groups[i];
      if (!trace.kept[i]) continue;
      const amount counted = measured(group, of);
      if (counted != amount{}) sums[number_of(trace, group, key)].add(group.no_free, counted);
    }
  }
  return sums;
}

group_list make_list(const std::vector<named_trace>& traces, const name_book& names, group_key by,
                     measure of, std::optional<std::size_t> top) {
  group_list list;
  list.by = by;
  list.of = of;
  const auto sums = sums_by(traces, names, by, of);
  for (std::uint32_t number = 0; number < sums.size(); ++number) {
    list.total += sums[number];
    if (sums[number].sum() != amount{}) list.rows.push_back({number, sums[number]});
  }
  std::ranges::sort(list.rows, [&](const list_row& a, const list_row& b) {
    const amount sum_a = a.sum.sum(), sum_b = b.sum.sum();
    if (sum_a.bytes != sum_b.bytes) return sum_a.bytes > sum_b.bytes;
    if (sum_a.blocks != sum_b.blocks) return sum_a.blocks > sum_b.blocks;
    return names.compare(by, a.name, b.name) < 0;
  });
  if (top && *top < list.rows.size()) {
    list.left_out = list.rows.size() - *top;
    for (std::size_t i = *top; i < list.rows.size(); ++i) list.left_out_sum += list.rows[i].sum;
    list.rows.resize(*top);
  }
  return list;
}

}  // namespace kiv::report
