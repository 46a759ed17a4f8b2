#include <algorithm>
#include <ostream>

#include "export/one_line.h"
#include "export/stack_tree.h"
#include "export/writers.h"

namespace kiv::exports {
namespace {

// A frame must not hold what ends one, and some readers leave out empty frames.
std::string frame_of(std::string_view name) {
  std::string frame = one_line(name);
  std::ranges::replace(frame, ';', ',');
  return frame.empty() ? "(no name)" : frame;
}

}  // namespace

void write_collapsed(std::ostream& out, const run_export& what) {
  const auto of = what.measures.front();
  stack_tree stacks(what, frame_of);
  std::vector<std::uint64_t> sums;
  for (const auto& named : what.traces) {
    for (std::size_t i = 0; i < named.kept.size(); ++i) {
      if (!named.kept[i]) continue;
      const block_group& group = named.trace->groups[i];
      const amount counted = measured(group, of);
      const std::uint64_t number = what.options.blocks ? counted.blocks : counted.bytes;
      if (number == 0) continue;
      const auto stack = stacks.stack_of(named, group);
      sums.resize(stacks.size(), 0);
      sums[stack] += number;
    }
  }
  std::string line;
  std::vector<std::size_t> ends;  // in the line, of the frames around
  for (const auto& place : stacks.in_order()) {
    ends.resize(place.depth);
    line.resize(ends.empty() ? 0 : ends.back());
    if (place.depth > 0) line += ';';
    line += stacks.frame(place.frame);
    ends.push_back(line.size());
    if (sums[place.stack] > 0) out << line << ' ' << sums[place.stack] << '\n';
  }
}

}  // namespace kiv::exports
