#include "report/run_trend.h"

#include <algorithm>

#include "report/group_lists.h"
#include "report/run_report.h"

namespace kiv::report {

bool run_trend::add(const run_profile& run, std::string& error) {
  group_filter filter;
  if (!filter.set(options_.filter, error)) return false;
  process_was_seen_ = process_was_seen_ || filter.knows_process(run);
  trend_point point;
  point.run = run.name;
  point.complete = is_complete(run);
  const auto traces = named_traces(run, filter, names_);
  for (const auto& named : traces) {
    for (std::size_t i = 0; i < named.kept.size(); ++i) {
      if (!named.kept[i]) continue;
      const block_group group = named.trace->groups[i];
      for (std::size_t of = 0; of < measure_count; ++of) {
        point.totals[of] += measured(group, static_cast<measure>(of));
      }
    }
  }
  points_.push_back(std::move(point));
  auto& bytes = bytes_.emplace_back();
  for (const auto& sum : sums_by(traces, names_, options_.by, options_.of)) {
    bytes.push_back(sum.sum().bytes);
  }
  return true;
}

void run_trend::finish(std::optional<std::size_t> top) {
  if (points_.empty()) return;
  for (std::uint32_t name = 0; name < names_.size(options_.by); ++name) {
    trend_row row;
    row.name = name;
    bool any = false;
    for (const auto& run : bytes_) {
      const std::uint64_t bytes = name < run.size() ? run[name] : 0;
      if (!row.bytes.empty() && bytes > row.bytes.back()) ++row.grew;
      row.bytes.push_back(bytes);
      any = any || bytes > 0;
    }
    row.change = static_cast<std::int64_t>(row.bytes.back() - row.bytes.front());
    if (any) rows_.push_back(std::move(row));
  }
  std::ranges::sort(rows_, [&](const trend_row& a, const trend_row& b) {
    if (a.change != b.change) return a.change > b.change;
    if (a.grew != b.grew) return a.grew > b.grew;
    if (a.bytes.back() != b.bytes.back()) return a.bytes.back() > b.bytes.back();
    return names_.compare(options_.by, a.name, b.name) < 0;
  });
  if (top && *top < rows_.size()) {
    left_out_ = rows_.size() - *top;
    rows_.resize(*top);
  }
}

}  // namespace kiv::report
