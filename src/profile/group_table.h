#pragma once

#include <absl/container/flat_hash_set.h>
#include <absl/hash/hash.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "profile/profile.h"

namespace kiv {

// What the blocks of a group share, as the replay names it.
struct group_key {
  static constexpr std::uint64_t no_query = std::uint64_t{1} << 32;
  static constexpr std::uint64_t open_query = no_query + 1;  // the bracket that has not ended yet

  std::int64_t location = 0;
  std::uint32_t id = 0;     // allocation id number
  std::uint32_t color = 0;  // number within the id
  std::uint32_t path = 0;
  std::uint32_t process = 0;
  std::uint64_t query = no_query;  // qid, or one of the above
  bool no_free = false;
  bool folded = false;  // stands for the groups that were too many: line, colour, path and query
                        // are left out

  friend bool operator==(const group_key&, const group_key&) = default;
  template <class Hash>
  friend Hash AbslHashValue(Hash state, const group_key& key) {
    return Hash::combine(std::move(state), key.location, key.id, key.color, key.path, key.process,
                         key.query, key.no_free, key.folded);
  }
};

// The groups of blocks of a trace, with their figures. What was live at the peak is known without
// a second pass: a group's live figure is copied when it first changes after a peak.
class group_table {
 public:
  using handle = std::uint32_t;

  struct group {
    group_key key;
    std::size_t hash = 0;  // of the key
    std::uint64_t resizes = 0;
    std::uint64_t peaks_seen = 0;  // `at_peak` is of the peak with this number
    bool merged = false;           // another group took the figures over
    std::array<amount, figure_count> figures{};

    amount& operator[](figure which) { return figures[static_cast<std::size_t>(which)]; }
    const amount& operator[](figure which) const {
      return figures[static_cast<std::size_t>(which)];
    }
  };

  group_table() : index_(0, hash{this}, equal{this}) {}
  group_table(const group_table&) = delete;
  group_table& operator=(const group_table&) = delete;

  // The group of a new block. Beyond the limit of groups a new key gets a folded group.
  handle find_or_add(const group_key& key);
  group& operator[](handle which) { return chunks_[which / chunk_size][which % chunk_size]; }
  const group& operator[](handle which) const {
    return chunks_[which / chunk_size][which % chunk_size];
  }

  // Live memory of the group, to be changed.
  amount& live(handle which) {
    group& changed = (*this)[which];
    settle_peak(changed);
    return changed[figure::live];
  }
  // Most memory is live now.
  void peak_reached() { ++peaks_; }

  // Gives a group the statement of its bracket. A group that has that key already takes the figures
  // over: it comes back, else the group itself.
  handle set_query(handle which, std::uint64_t query);

  // Hands over every group with what was live in it at the last peak; the table is empty then.
  template <class Action>
  void take_each(Action action) {
    index_.clear();
    for (std::vector<group>& chunk : chunks_) {
      for (group& one : chunk) {
        if (one.merged) continue;
        settle_peak(one);
        action(std::as_const(one));
      }
      chunk = {};
    }
    chunks_.clear();
  }

  std::size_t size() const { return index_.size(); }
  // How many blocks went to folded groups.
  std::uint64_t blocks_folded() const { return blocks_folded_; }

 private:
  static constexpr std::size_t max_groups = 1'000'000;
  static constexpr handle chunk_size = 1024;

  void settle_peak(group& changed) const {
    if (changed.peaks_seen == peaks_) return;
    changed[figure::at_peak] = changed[figure::live];
    changed.peaks_seen = peaks_;
  }

  // A key is hashed once, also when the index grows.
  struct hashed_key {
    const group_key& key;
    std::size_t hash;
  };
  struct hash {
    using is_transparent = void;
    std::size_t operator()(const hashed_key& key) const { return key.hash; }
    std::size_t operator()(handle which) const { return (*table)[which].hash; }
    const group_table* table;
  };
  struct equal {
    using is_transparent = void;
    bool operator()(handle a, handle b) const { return (*table)[a].key == (*table)[b].key; }
    bool operator()(handle a, const hashed_key& b) const { return (*table)[a].key == b.key; }
    bool operator()(const hashed_key& a, handle b) const { return (*table)[b].key == a.key; }
    const group_table* table;
  };

  handle add(const hashed_key& key);

  std::vector<std::vector<group>> chunks_;  // all full but the last
  std::vector<handle> free_;                // places of groups that were merged into others
  absl::flat_hash_set<handle, hash, equal> index_;
  std::uint64_t peaks_ = 0;
  std::uint64_t blocks_folded_ = 0;
};

}  // namespace kiv
