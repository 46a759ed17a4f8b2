#include "report/name_book.h"

#include <algorithm>
#include <numeric>

namespace kiv::report {
namespace {

constexpr std::uint32_t none = UINT32_MAX;

int sign(int comparison) { return comparison < 0 ? -1 : comparison > 0 ? 1 : 0; }

// Numbers for all entries of a list, at least one.
template <class List, class Add>
std::vector<std::uint32_t> numbers_of(const List& list, Add add) {
  std::vector<std::uint32_t> numbers;
  numbers.reserve(list.size() + 1);
  for (const auto& entry : list) numbers.push_back(add(entry));
  if (numbers.empty()) numbers.push_back(add({}));
  return numbers;
}

// The number at a place; that of the unknown when a damaged profile points outside.
std::uint32_t at(const std::vector<std::uint32_t>& numbers, std::uint32_t place) {
  return numbers[place < numbers.size() ? place : 0];
}

std::vector<std::uint32_t>& of(place_numbers& numbers, group_key key) {
  return numbers[static_cast<std::size_t>(key)];
}

}  // namespace

std::uint32_t text_pool::add(std::string_view text) {
  const auto found = numbers_.find(text);
  if (found != numbers_.end()) return found->second;
  const auto number = static_cast<std::uint32_t>(texts_.size());
  numbers_.emplace(texts_.emplace_back(text), number);
  return number;
}

std::uint32_t pair_pool::add(pair value) {
  for (; indexed_ < pairs_.size(); ++indexed_) {
    numbers_.try_emplace(pairs_[indexed_], static_cast<std::uint32_t>(indexed_));
  }
  const auto [at, is_new] = numbers_.try_emplace(value, static_cast<std::uint32_t>(pairs_.size()));
  if (is_new) pairs_.push_back(value);
  indexed_ = pairs_.size();
  return at->second;
}

name_book::name_book() { paths_.add({none, none}); }

place_numbers name_book::add(const profile& trace) {
  path_ranks_.clear();
  place_numbers numbers;
  const auto id_numbers =
      numbers_of(trace.ids, [&](const profile_id& id) { return ids_.add(id.name); });
  of(numbers, group_key::color) = numbers_of(trace.colors, [&](const profile_color& color) {
    return colors_.add({at(id_numbers, color.id), color_names_.add(color.name)});
  });
  of(numbers, group_key::id) = id_numbers;
  of(numbers, group_key::line) =
      numbers_of(trace.lines, [&](const std::string& line) { return lines_.add(line); });
  of(numbers, group_key::process) =
      numbers_of(trace.processes,
                 [&](const profile_process& process) { return processes_.add(process.name); });
  of(numbers, group_key::query) =
      numbers_of(trace.queries, [&](const std::string& query) { return queries_.add(query); });

  const auto functions = numbers_of(trace.functions, [&](const profile_function& function) {
    return functions_.add({objects_.add(function.object), function_names_.add(function.name)});
  });
  auto& paths = of(numbers, group_key::path);
  auto& innermost = of(numbers, group_key::function);
  paths.reserve(trace.paths.size());
  innermost.reserve(trace.paths.size());
  paths = {0};
  innermost = {functions[0]};
  const bool all_new =
      trace.paths_differ && paths_.size() == 1 && functions_.size() == trace.functions.size();
  for (std::size_t i = 1; i < trace.paths.size(); ++i) {
    const call_path& path = trace.paths[i];
    const std::uint32_t function = at(functions, path.function);
    const pair_pool::pair node(at(paths, path.parent), function);
    paths.push_back(all_new ? paths_.add_new(node) : paths_.add(node));
    innermost.push_back(function);
  }
  return numbers;
}

std::size_t name_book::size(group_key key) const {
  switch (key) {
    case group_key::id:
      return ids_.size();
    case group_key::color:
      return colors_.size();
    case group_key::line:
      return lines_.size();
    case group_key::function:
      return functions_.size();
    case group_key::path:
      return paths_.size();
    case group_key::process:
      return processes_.size();
    case group_key::query:
      return queries_.size();
  }
  return 0;
}

std::string name_book::name(group_key key, std::uint32_t number) const {
  switch (key) {
    case group_key::id:
      return ids_[number];
    case group_key::color:
      return ids_[colors_[number].first] + " / " + color_names_[colors_[number].second];
    case group_key::line:
      return lines_[number];
    case group_key::function: {
      const auto& [object, function] = functions_[number];
      if (objects_[object].empty()) {
        return function_names_[function].empty() ? "(no function)" : function_names_[function];
      }
      return objects_[object] + ':' + function_names_[function];
    }
    case group_key::path: {
      std::string joined;
      for (const auto frame : frames(number)) {
        if (!joined.empty()) joined += " > ";
        joined += name(group_key::function, frame);
      }
      return joined.empty() ? "(no call path)" : joined;
    }
    case group_key::process:
      return processes_[number];
    case group_key::query:
      return queries_[number];
  }
  return {};
}

int name_book::compare_pairs(const text_pool& first, const text_pool& second, pair_pool::pair a,
                             pair_pool::pair b) const {
  if (a.first != b.first) return sign(first[a.first].compare(first[b.first]));
  return sign(second[a.second].compare(second[b.second]));
}

int name_book::compare(group_key key, std::uint32_t a, std::uint32_t b) const {
  if (a == b) return 0;
  switch (key) {
    case group_key::id:
      return sign(ids_[a].compare(ids_[b]));
    case group_key::color:
      return compare_pairs(ids_, color_names_, colors_[a], colors_[b]);
    case group_key::line:
      return sign(lines_[a].compare(lines_[b]));
    case group_key::function:
      return compare_pairs(objects_, function_names_, functions_[a], functions_[b]);
    case group_key::path:
      return path_ranks()[a] < path_ranks()[b] ? -1 : 1;
    case group_key::process:
      return sign(processes_[a].compare(processes_[b]));
    case group_key::query:
      return sign(queries_[a].compare(queries_[b]));
  }
  return 0;
}

std::vector<std::uint32_t> name_book::frames(std::uint32_t path) const {
  std::vector<std::uint32_t> functions;
  for (; path != 0; path = paths_[path].first) functions.push_back(paths_[path].second);
  std::ranges::reverse(functions);
  return functions;
}

// The place of every path when all are sorted: paths are compared only when two are alike in their
// figures, but then down to 10,000 functions each, so their order is made once for all.
const std::vector<std::uint32_t>& name_book::path_ranks() const {
  if (path_ranks_.size() == paths_.size()) return path_ranks_;
  std::vector<std::uint32_t> order(functions_.size());
  std::iota(order.begin(), order.end(), 0u);
  std::ranges::sort(order, [&](std::uint32_t a, std::uint32_t b) {
    return compare(group_key::function, a, b) < 0;
  });
  std::vector<std::uint32_t> function_rank(order.size());
  for (std::uint32_t i = 0; i < order.size(); ++i) function_rank[order[i]] = i;

  std::vector<std::uint32_t> nodes(paths_.size() - 1);
  std::iota(nodes.begin(), nodes.end(), 1u);
  std::ranges::sort(nodes, [&](std::uint32_t a, std::uint32_t b) {
    const auto& [parent_a, function_a] = paths_[a];
    const auto& [parent_b, function_b] = paths_[b];
    return parent_a != parent_b ? parent_a < parent_b
                                : function_rank[function_a] > function_rank[function_b];
  });
  // Children of one parent now stand together, the last in the order of names first.
  std::vector<std::uint32_t> first_child(paths_.size(), none);
  for (std::uint32_t i = 0; i < nodes.size(); ++i) {
    auto& first = first_child[paths_[nodes[i]].first];
    if (first == none) first = i;
  }
  path_ranks_.assign(paths_.size(), 0);
  std::vector<std::uint32_t> stack = {0};
  for (std::uint32_t rank = 0; !stack.empty(); ++rank) {
    const std::uint32_t node = stack.back();
    stack.pop_back();
    path_ranks_[node] = rank;
    for (std::size_t i = first_child[node];
         i != none && i < nodes.size() && paths_[nodes[i]].first == node; ++i) {
      stack.push_back(nodes[i]);
    }
  }
  return path_ranks_;
}

}  // namespace kiv::report
