#include "export/group_order.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace kiv::exports {
namespace {

using report::group_key;

constexpr std::array sort_keys = {group_key::path,  group_key::line,    group_key::id,
                                  group_key::color, group_key::process, group_key::query};

std::vector<std::uint32_t> ranks_of(const report::name_book& names, group_key key) {
  std::vector<std::uint32_t> order(names.size(key)), ranks(names.size(key));
  std::iota(order.begin(), order.end(), 0u);
  std::ranges::sort(order,
                    [&](std::uint32_t a, std::uint32_t b) { return names.compare(key, a, b) < 0; });
  for (std::uint32_t i = 0; i < order.size(); ++i) ranks[order[i]] = i;
  return ranks;
}

struct placed_group {
  std::array<std::uint32_t, sort_keys.size()> ranks;
  bool no_free;
  std::uint32_t process;  // of the same name there may be several
  std::size_t place;

  auto key() const { return std::tie(ranks, no_free, process, place); }
};

}  // namespace

group_order::group_order(const run_export& what) {
  for (const auto key : sort_keys) {
    ranks_[static_cast<std::size_t>(key)] = ranks_of(what.names, key);
  }
}

std::vector<std::size_t> group_order::of(const report::named_trace& trace) const {
  std::vector<placed_group> groups;
  for (std::size_t i = 0; i < trace.kept.size(); ++i) {
    if (!trace.kept[i]) continue;
    const block_group& group = trace.trace->groups[i];
    placed_group& placed = groups.emplace_back(placed_group{{}, group.no_free, group.process, i});
    for (std::size_t k = 0; k < sort_keys.size(); ++k) {
      const auto& ranks = ranks_[static_cast<std::size_t>(sort_keys[k])];
      placed.ranks[k] = ranks[number_of(trace, group, sort_keys[k])];
    }
  }
  std::ranges::sort(groups,
                    [](const placed_group& a, const placed_group& b) { return a.key() < b.key(); });
  std::vector<std::size_t> places;
  places.reserve(groups.size());
  for (const auto& group : groups) places.push_back(group.place);
  return places;
}

}  // namespace kiv::exports
