#include "export/stack_tree.h"

#include <algorithm>
#include <numeric>

namespace kiv::exports {

using report::group_key;

stack_tree::stack_tree(const run_export& what, frame_text text)
    : what_(what), text_(text), function_frames_(what.names.size(group_key::function), none) {
  stacks_.add({none, none});
}

std::uint32_t stack_tree::stack_of(const report::named_trace& trace, const block_group& group) {
  const auto path = number_of(trace, group, group_key::path);
  if (!what_.options.ids) return below(0, path);
  const auto& colors = trace.trace->colors;
  const auto id =
      frame_number(what_.names.name(group_key::id, number_of(trace, group, group_key::id)));
  const auto color =
      frame_number(group.color < colors.size() ? colors[group.color].name : std::string());
  return below(child(child(0, id), color), path);
}

std::uint32_t stack_tree::function_frame(std::uint32_t function) {
  auto& frame = function_frames_[function];
  if (frame == none) frame = frame_number(what_.names.name(group_key::function, function));
  return frame;
}

// Goes up to the first caller that is known, then down again: paths are too long for recursion.
std::uint32_t stack_tree::below(std::uint32_t outer, std::uint32_t path) {
  if (path == 0) return child(outer, frame_number("(no call path)"));
  std::vector<std::uint32_t> unknown;
  std::uint32_t stack = outer;
  for (; path != 0; path = what_.names.path_node(path).first) {
    const auto number = known_.add({outer, path});
    if (number < stacks_of_known_.size() && stacks_of_known_[number] != none) {
      stack = stacks_of_known_[number];
      break;
    }
    stacks_of_known_.resize(std::max<std::size_t>(stacks_of_known_.size(), number + 1), none);
    unknown.push_back(number);
  }
  for (auto number = unknown.rbegin(); number != unknown.rend(); ++number) {
    const auto function = what_.names.path_node(known_[*number].second).second;
    stack = child(stack, function_frame(function));
    stacks_of_known_[*number] = stack;
  }
  return stack;
}

std::vector<std::uint32_t> stack_tree::frames_of(std::uint32_t stack) const {
  std::vector<std::uint32_t> frames;
  for (; stack != 0; stack = stacks_[stack].first) frames.push_back(stacks_[stack].second);
  std::ranges::reverse(frames);
  return frames;
}

std::vector<std::uint32_t> stack_tree::ranks_of_frames() const {
  std::vector<std::uint32_t> order(frames_.size()), ranks(frames_.size());
  std::iota(order.begin(), order.end(), 0u);
  std::ranges::sort(order,
                    [&](std::uint32_t a, std::uint32_t b) { return frames_[a] < frames_[b]; });
  for (std::uint32_t i = 0; i < order.size(); ++i) ranks[order[i]] = i;
  return ranks;
}

std::vector<stack_tree::place> stack_tree::in_order() const {
  const auto ranks = ranks_of_frames();
  // Those around one stand together, the last in the order of texts first: so a stack of work
  // gives them in their order.
  std::vector<std::uint32_t> inner(stacks_.size() - 1);
  std::iota(inner.begin(), inner.end(), 1u);
  std::ranges::sort(inner, [&](std::uint32_t a, std::uint32_t b) {
    const auto& [around_a, frame_a] = stacks_[a];
    const auto& [around_b, frame_b] = stacks_[b];
    return around_a != around_b ? around_a < around_b : ranks[frame_a] > ranks[frame_b];
  });
  std::vector<std::size_t> first(stacks_.size() + 1, 0);
  for (const auto stack : inner) ++first[stacks_[stack].first + 1];
  std::partial_sum(first.begin(), first.end(), first.begin());

  std::vector<place> ordered, left;
  ordered.reserve(inner.size());
  const auto enter = [&](std::uint32_t stack, std::size_t depth) {
    for (auto i = first[stack]; i < first[stack + 1]; ++i) {
      left.push_back({inner[i], stacks_[inner[i]].second, depth});
    }
  };
  enter(0, 0);
  while (!left.empty()) {
    const place next = left.back();
    left.pop_back();
    ordered.push_back(next);
    enter(next.stack, next.depth + 1);
  }
  return ordered;
}

}  // namespace kiv::exports
