#include "report/call_tree.h"

#include <algorithm>

#include "report/group_lists.h"
#include "report/printable.h"

namespace kiv::report {
namespace {

// What a share is a share of: bytes, or blocks when all of them are empty.
std::uint64_t weight(const amount& what, const amount& total) {
  return total.bytes > 0 ? what.bytes : what.blocks;
}

class tree_maker {
 public:
  tree_maker(call_tree& tree, std::vector<amount> self)
      : tree_(tree), self_(std::move(self)), inclusive_(self_) {
    // Parents have smaller numbers than their children.
    for (std::size_t i = inclusive_.size(); i-- > 1;) {
      inclusive_[parent(static_cast<std::uint32_t>(i))] += inclusive_[i];
    }
    tree_.total = inclusive_[0];
  }

  void add_rows() {
    sort_children();
    if (is_shown(self_[0])) tree_.rows.push_back({0, 0, self_[0], self_[0]});
    struct call {
      std::uint32_t path, depth;
    };
    std::vector<call> stack;
    const auto push_children = [&](std::uint32_t path, std::uint32_t depth) {
      for (std::uint32_t i = first_child_[path + 1]; i-- > first_child_[path];) {
        stack.push_back({children_[i], depth});
      }
    };
    push_children(0, 0);
    while (!stack.empty()) {
      const auto [path, depth] = stack.back();
      stack.pop_back();
      if (!is_shown(inclusive_[path])) continue;
      tree_.rows.push_back({path, depth, inclusive_[path], self_[path]});
      push_children(path, depth + 1);
    }
  }

  void count_the_rest() {
    std::vector<bool> shown(self_.size(), false);
    for (const auto& row : tree_.rows) shown[row.path] = true;
    for (std::size_t i = 0; i < self_.size(); ++i) {
      const amount& own = i == 0 ? self_[0] : inclusive_[i];
      if (shown[i] || own == amount{}) continue;
      ++tree_.left_out;
      tree_.left_out_sum += self_[i];
    }
  }

 private:
  std::uint32_t parent(std::uint32_t path) const { return tree_.names.path_node(path).first; }

  bool is_shown(const amount& what) const {
    const std::uint64_t part = weight(what, tree_.total);
    return part > 0 &&
           static_cast<double>(part) * 100 >=
               tree_.options.min_share * static_cast<double>(weight(tree_.total, tree_.total));
  }

  // The children of path p are children_[first_child_[p]] up to first_child_[p + 1].
  void sort_children() {
    const auto count = static_cast<std::uint32_t>(self_.size());
    for (std::uint32_t i = 1; i < count; ++i) children_.push_back(i);
    std::ranges::sort(children_, [&](std::uint32_t a, std::uint32_t b) {
      if (parent(a) != parent(b)) return parent(a) < parent(b);
      const amount &sum_a = inclusive_[a], &sum_b = inclusive_[b];
      if (sum_a.bytes != sum_b.bytes) return sum_a.bytes > sum_b.bytes;
      if (sum_a.blocks != sum_b.blocks) return sum_a.blocks > sum_b.blocks;
      return tree_.names.compare(group_key::path, a, b) < 0;
    });
    first_child_.assign(count + 1, 0);
    for (const auto child : children_) ++first_child_[parent(child) + 1];
    for (std::size_t i = 1; i < first_child_.size(); ++i) first_child_[i] += first_child_[i - 1];
  }

  call_tree& tree_;
  std::vector<amount> self_, inclusive_;  // by number of the path
  std::vector<std::uint32_t> children_, first_child_;
};

}  // namespace

bool make_tree(const run_profile& run, const tree_options& options, call_tree& into,
               std::string& error) {
  group_filter filter;
  if (!filter.set(options.filter, run, error)) return false;
  into.run = &run;
  into.options = options;
  const auto traces = named_traces(run, filter, into.names);
  std::vector<amount> self;
  for (const auto& sum : sums_by(traces, into.names, group_key::path, options.of)) {
    self.push_back(sum.sum());
  }
  tree_maker maker(into, std::move(self));
  maker.add_rows();
  maker.count_the_rest();
  return true;
}

}  // namespace kiv::report
