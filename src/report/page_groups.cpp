#include "report/page_groups.h"

#include <absl/container/flat_hash_map.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>

#include "report/json_size.h"

namespace kiv::report {
namespace {

using counts = std::array<page_group::counted, measure_count>;

constexpr std::array named_keys = {group_key::id, group_key::color, group_key::line,
                                   group_key::process, group_key::query};
constexpr auto path_key = static_cast<std::size_t>(group_key::path);
constexpr auto function_key = static_cast<std::size_t>(group_key::function);

// How much is put together, by key. Level 0 keeps everything, at each further one twice as much is
// small, at the last nothing is kept but what is named elsewhere.
using fold_levels = std::array<int, key_count>;
constexpr int last_level = 26;
double threshold_of(int level) { return level == 0 ? 0 : std::ldexp(1, level - last_level + 1); }

// What is told apart as finely as there is room for, the most telling first.
constexpr std::array refined_keys = {group_key::path,  group_key::id,      group_key::line,
                                     group_key::color, group_key::process, group_key::query};

constexpr double kept_always = std::numeric_limits<double>::infinity();

// Bytes of JSON that a group takes at least.
constexpr std::size_t smallest_group = 22;

std::size_t index(group_key key) { return static_cast<std::size_t>(key); }

counts counts_of(const block_group& group) {
  counts all;
  for (std::size_t i = 0; i < measure_count; ++i) {
    const amount what = measured(group, static_cast<measure>(i));
    all[i] = {what.blocks, what.bytes};
  }
  return all;
}

void add(counts& sum, const counts& more) {
  for (std::size_t i = 0; i < measure_count; ++i) {
    sum[i].blocks += more[i].blocks;
    sum[i].bytes += more[i].bytes;
  }
}

bool is_empty(const page_group::counted& what) { return what.blocks == 0 && what.bytes == 0; }

// The largest share that a part has of all, by any measure, in blocks or in bytes.
double share(const counts& part, const counts& all) {
  double largest = 0;
  const auto look_at = [&](std::uint64_t of_part, std::uint64_t of_all) {
    if (of_part == 0) return;
    largest = std::max(largest, static_cast<double>(of_part) / static_cast<double>(of_all));
  };
  for (std::size_t i = 0; i < measure_count; ++i) {
    look_at(part[i].blocks, all[i].blocks);
    look_at(part[i].bytes, all[i].bytes);
  }
  return largest;
}

// What groups are told apart by: numbers of the name book. Of paths twice the number, plus 1 for
// the others that are called from there.
struct group_place {
  std::uint32_t run = 0, trace = 0;
  bool no_free = false;
  std::array<std::uint32_t, named_keys.size()> names = {};
  std::uint32_t path = 0;

  friend bool operator==(const group_place&, const group_place&) = default;
  template <class Hash>
  friend Hash AbslHashValue(Hash state, const group_place& place) {
    return Hash::combine(std::move(state), place.run, place.trace, place.no_free, place.names,
                         place.path);
  }
};

struct placed_group {
  group_place place;
  counts counted_by;
};

// Adds up groups with the same place; they stay in the order in which places come first.
class group_sums {
 public:
  void add(const group_place& place, const counts& counted_by) {
    const auto [at, is_new] = known_.try_emplace(place, groups_.size());
    if (is_new) {
      groups_.push_back({place, counted_by});
    } else {
      report::add(groups_[at->second].counted_by, counted_by);
    }
  }
  std::size_t size() const { return groups_.size(); }
  std::vector<placed_group> take() { return std::move(groups_); }

 private:
  std::vector<placed_group> groups_;
  absl::flat_hash_map<group_place, std::size_t> known_;
};

class group_folder {
 public:
  group_folder(const std::vector<page_run>& runs, const name_book& names, shown_names& shown,
               const named_elsewhere& elsewhere)
      : names_(names), shown_(shown), elsewhere_(elsewhere), run_count_(runs.size()) {
    for (std::size_t key = 0; key < key_count; ++key) {
      shares_[key].resize(names.size(static_cast<group_key>(key)));
    }
    group_sums all;
    for (std::uint32_t run = 0; run < runs.size(); ++run) {
      for (std::uint32_t trace = 0; trace < runs[run].traces.size(); ++trace) {
        add_groups(run, trace, runs[run].traces[trace], all);
      }
    }
    groups_ = all.take();
    for (std::uint32_t run = 0; run < runs.size(); ++run) find_shares(run);
    for (const auto& [key, number] : elsewhere_) {
      if (number != others_number) shares_[index(key)][number] = kept_always;
    }
  }

  // The groups with what is small put together; nothing when they take more than `budget` bytes of
  // JSON.
  std::optional<page_groups> folded(const fold_levels& levels, std::size_t budget) const {
    page_groups page;
    for (std::size_t key = 0; key < key_count; ++key) {
      page.thresholds[key] = threshold_of(levels[key]);
    }
    const auto groups = put_together(page.thresholds, budget / smallest_group);
    if (!groups) return std::nullopt;
    add_names(*groups, page);
    page.runs.resize(run_count_);
    for (const auto& group : *groups) add_group(group, page);
    page.bytes = size_of(page);
    if (page.bytes > budget) return std::nullopt;
    return page;
  }

 private:
  static void add_groups(std::uint32_t run, std::uint32_t trace, const named_trace& named,
                         group_sums& into) {
    std::size_t i = 0;
    for (const block_group& group : named.trace->groups) {
      if (!named.kept[i++]) continue;
      const counts counted_by = counts_of(group);
      if (std::ranges::all_of(counted_by, is_empty)) continue;
      group_place place{run, trace, group.no_free, {}, 0};
      for (std::size_t key = 0; key < named_keys.size(); ++key) {
        place.names[key] = number_of(named, group, named_keys[key]);
      }
      place.path = 2 * number_of(named, group, group_key::path);
      into.add(place, counted_by);
    }
  }

  void find_shares(std::uint32_t run) {
    std::array<std::vector<counts>, key_count> sums;
    for (std::size_t key = 0; key < key_count; ++key) sums[key].resize(shares_[key].size());
    counts all = {};
    for (const auto& group : groups_) {
      if (group.place.run != run) continue;
      add(all, group.counted_by);
      for (std::size_t key = 0; key < named_keys.size(); ++key) {
        add(sums[index(named_keys[key])][group.place.names[key]], group.counted_by);
      }
      add(sums[path_key][group.place.path / 2], group.counted_by);
    }
    // What is called from a path counts for it too.
    auto& paths = sums[path_key];
    for (std::size_t i = paths.size(); i-- > 1;) {
      add(paths[names_.path_node(static_cast<std::uint32_t>(i)).first], paths[i]);
    }
    for (std::size_t key = 0; key < key_count; ++key) {
      for (std::size_t i = 0; i < sums[key].size(); ++i) {
        shares_[key][i] = std::max(shares_[key][i], share(sums[key][i], all));
      }
    }
    shares_[path_key][0] = kept_always;
  }

  // For each number of a key: itself, or that of the others. One name alone stays what it is.
  std::vector<std::uint32_t> kept_names(group_key key, double threshold) const {
    const auto& shares = shares_[index(key)];
    const auto is_small = [&](double share) { return share > 0 && share < threshold; };
    const bool any_others = std::ranges::count_if(shares, is_small) > 1;
    std::vector<std::uint32_t> kept(shares.size());
    for (std::uint32_t i = 0; i < kept.size(); ++i) {
      kept[i] = any_others && is_small(shares[i]) ? others_number : i;
    }
    return kept;
  }

  // Nothing when there are more than `most` groups.
  std::optional<std::vector<placed_group>> put_together(
      const std::array<double, key_count>& thresholds, std::size_t most) const {
    std::array<std::vector<std::uint32_t>, named_keys.size()> name_of;
    for (std::size_t key = 0; key < named_keys.size(); ++key) {
      name_of[key] = kept_names(named_keys[key], thresholds[index(named_keys[key])]);
    }
    std::vector<std::uint32_t> path_of(shares_[path_key].size());
    for (std::uint32_t i = 1; i < path_of.size(); ++i) {
      const std::uint32_t parent = path_of[names_.path_node(i).first];
      path_of[i] = shares_[path_key][i] >= thresholds[path_key] ? 2 * i : parent | 1;
    }
    group_sums sums;
    for (const auto& [place, counted_by] : groups_) {
      group_place folded = place;
      for (std::size_t key = 0; key < named_keys.size(); ++key) {
        folded.names[key] = name_of[key][place.names[key]];
      }
      folded.path = path_of[place.path / 2];
      sums.add(folded, counted_by);
      if (sums.size() > most) return std::nullopt;
    }
    return sums.take();
  }

  // The tables of all names and paths that the groups have.
  void add_names(const std::vector<placed_group>& groups, page_groups& page) const {
    std::array<std::vector<bool>, key_count> used;
    for (std::size_t key = 0; key < key_count; ++key) used[key].resize(shares_[key].size() + 1);
    const auto use = [&](std::size_t key, std::uint32_t number) {
      used[key][number == others_number ? used[key].size() - 1 : number] = true;
    };
    std::vector<bool> with_others(shares_[path_key].size());
    for (const auto& [place, counted_by] : groups) {
      for (std::size_t key = 0; key < named_keys.size(); ++key) {
        use(index(named_keys[key]), place.names[key]);
      }
      if (place.path & 1) with_others[place.path / 2] = true;
      for (std::uint32_t path = place.path / 2; path != 0 && !used[path_key][path];) {
        used[path_key][path] = true;
        use(function_key, names_.path_node(path).second);
        path = names_.path_node(path).first;
      }
    }
    for (const auto& [key, number] : elsewhere_) use(index(key), number);
    used[function_key].back() = std::ranges::find(with_others, true) != with_others.end();
    for (std::size_t key = 0; key < key_count; ++key) {
      count_kept(key, used[key], page);
      if (key != path_key) name_used(static_cast<group_key>(key), used[key], page);
    }
    add_paths(used[path_key], with_others, page);
  }

  void count_kept(std::size_t key, const std::vector<bool>& used, page_groups& page) const {
    for (std::size_t i = key == path_key ? 1 : 0; i < shares_[key].size(); ++i) {
      page.kept[key].kept += used[i] ? 1 : 0;
      page.kept[key].all += used[i] || shares_[key][i] > 0 ? 1 : 0;
    }
  }

  void name_used(group_key key, const std::vector<bool>& used, page_groups& page) const {
    static const shown_name others{std::string(others_name), others_name.size() + 2};
    auto& names = page.names[index(key)];
    auto& places = page.places[index(key)];
    places.resize(used.size());
    for (std::uint32_t i = 0; i < used.size(); ++i) {
      if (!used[i]) continue;
      places[i] = static_cast<std::uint32_t>(names.size());
      names.push_back(i + 1 < used.size() ? shown_.of(key, i) : others);
    }
  }

  // The place of a path in the page is at its number, that of its others behind all numbers.
  void add_paths(const std::vector<bool>& used, const std::vector<bool>& with_others,
                 page_groups& page) const {
    auto& places = page.places[path_key];
    places.resize(2 * with_others.size());
    const auto add_path = [&](std::size_t number, std::uint32_t parent, std::uint32_t function) {
      places[number] = static_cast<std::uint32_t>(page.paths.size());
      page.paths.emplace_back(parent, page.place_of(group_key::function, function));
    };
    for (std::uint32_t i = 1; i < with_others.size(); ++i) {
      const auto& [parent, function] = names_.path_node(i);
      if (used[i]) add_path(i, places[parent], function);
    }
    for (std::uint32_t i = 0; i < with_others.size(); ++i) {
      if (with_others[i]) add_path(with_others.size() + i, places[i], others_number);
    }
  }

  void add_group(const placed_group& from, page_groups& page) const {
    const auto& place = from.place;
    const auto of = [&](std::size_t key) {
      return page.place_of(named_keys[key], place.names[key]);
    };
    const std::size_t others = place.path & 1 ? shares_[path_key].size() : 0;
    page.runs[place.run].push_back({place.trace, place.no_free, of(0), of(1), of(2),
                                    page.places[path_key][others + place.path / 2], of(3), of(4),
                                    from.counted_by});
  }

  static std::size_t size_of(const page_groups& page) {
    std::size_t size = 0;
    for (const auto& run : page.runs) {
      for (const auto& group : run) {
        size += std::string_view("[,0,,,,,,,00],").size();
        for (const std::uint32_t number : {group.trace, group.id, group.color, group.line,
                                           group.path, group.process, group.query}) {
          size += json_size(number);
        }
        for (const auto& counted : group.counted_by) {
          if (is_empty(counted)) continue;
          size += json_size(counted.blocks) + json_size(counted.bytes) + 2;
        }
      }
    }
    for (const auto& [parent, function] : page.paths) {
      size += json_size(parent) + json_size(function) + std::string_view("[,],").size();
    }
    for (const auto& names : page.names) {
      for (const auto& name : names) size += name.json_bytes + 1;
    }
    return size;
  }

  const name_book& names_;
  shown_names& shown_;
  const named_elsewhere& elsewhere_;
  std::size_t run_count_;
  std::vector<placed_group> groups_;
  std::array<std::vector<double>, key_count> shares_;  // by number, of functions 0
};

// Lowers levels as far as groups folded at them fit the budget; `page` becomes what fits.
class level_search {
 public:
  level_search(const group_folder& folder, std::size_t budget) : folder_(folder), budget_(budget) {
    levels_.fill(last_level);
  }

  // Of these keys together.
  void lower(std::span<const group_key> keys) {
    int fitting = levels_[index(keys[0])], too_large = -1;
    while (fitting - too_large > 1) {
      // Mostly everything fits.
      const int level = too_large == -1 ? 0 : (too_large + fitting) / 2;
      fold_levels levels = levels_;
      for (const auto key : keys) levels[index(key)] = level;
      auto folded = folder_.folded(levels, budget_);
      if (folded) {
        fitting = level;
        levels_ = levels;
        page_ = std::move(folded);
      } else {
        too_large = level;
      }
    }
  }

  // The smallest possible when nothing fitted.
  page_groups take() {
    if (!page_) page_ = folder_.folded(levels_, std::numeric_limits<std::size_t>::max());
    return std::move(*page_);
  }

 private:
  const group_folder& folder_;
  std::size_t budget_;
  fold_levels levels_;
  std::optional<page_groups> page_;
};

}  // namespace

std::uint32_t page_groups::place_of(group_key key, std::uint32_t number) const {
  const auto& of_key = places[index(key)];
  return number == others_number ? of_key.back() : of_key[number];
}

page_groups fitting_groups(const std::vector<page_run>& runs, const name_book& names,
                           shown_names& shown, const named_elsewhere& elsewhere,
                           std::size_t budget) {
  const group_folder folder(runs, names, shown, elsewhere);
  level_search search(folder, budget);
  search.lower(refined_keys);
  for (const auto& key : refined_keys) search.lower({&key, 1});
  return search.take();
}

}  // namespace kiv::report
