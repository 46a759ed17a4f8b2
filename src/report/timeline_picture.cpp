#include "report/timeline_picture.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kiv::report {

std::string bars(const std::vector<std::uint64_t>& values, std::uint64_t highest) {
  constexpr std::array<std::string_view, 9> heights = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  std::string line;
  for (const auto value : values) {
    // Rounded up, so that what is there is seen.
    const double part =
        highest == 0 ? 0 : static_cast<double>(value) / static_cast<double>(highest);
    auto height = static_cast<std::size_t>(part * 8);
    if (static_cast<double>(height) < part * 8) ++height;
    line += heights[std::min<std::size_t>(height, 8)];
  }
  return line;
}

std::string timeline_picture(const profile& trace, std::size_t columns) {
  if (trace.timeline.empty() || columns == 0) return {};
  const std::uint64_t records = trace.timeline.back().last_record;
  if (records == 0) return {};
  columns = static_cast<std::size_t>(std::min<std::uint64_t>(columns, records));
  // Column of a record, from 1 to `records`.
  const auto column_of = [&](std::uint64_t record) {
    const double part = static_cast<double>(record - 1) / static_cast<double>(records);
    return std::min(static_cast<std::size_t>(part * static_cast<double>(columns)), columns - 1);
  };
  std::vector<std::uint64_t> highest(columns, 0);
  std::uint64_t most = 0, last = 0;
  for (const auto& step : trace.timeline) {
    if (step.last_record <= last || step.last_record > records) continue;
    for (std::size_t i = column_of(last + 1); i <= column_of(step.last_record); ++i) {
      highest[i] = std::max(highest[i], step.highest_bytes);
    }
    most = std::max(most, step.highest_bytes);
    last = step.last_record;
  }
  return bars(highest, most);
}

}  // namespace kiv::report
