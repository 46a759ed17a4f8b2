#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "profile/amount.h"
#include "profile/compact_groups.h"
#include "util/numbering.h"

namespace kiv {

// What the blocks of a group share: places in the profile's lists of names.
struct group_names {
  bool no_free = false;  // memory without an obligation to free
  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::uint32_t line = 0;
  std::uint32_t path = 0;
  std::uint32_t process = 0;
  std::uint32_t query = 0;
};

// The blocks that share all of these.
struct block_group : group_names, group_figures {
  // With-free memory that no free ended.
  amount leaked() const {
    return no_free ? amount{} : (*this)[figure::left_with_id] + (*this)[figure::live];
  }
};

// The groups of a profile: read like a list of block_group, but kept small.
class block_groups {
 public:
  class iterator {
   public:
    iterator(const block_groups& list, std::size_t place) : list_(&list), place_(place) {}
    block_group operator*() const { return (*list_)[place_]; }
    iterator& operator++() {
      ++place_;
      return *this;
    }
    friend bool operator==(const iterator&, const iterator&) = default;

   private:
    const block_groups* list_;
    std::size_t place_;
  };

  std::size_t size() const { return groups_.size(); }
  bool empty() const { return size() == 0; }
  iterator begin() const { return {*this, 0}; }
  iterator end() const { return {*this, size()}; }
  block_group operator[](std::size_t place) const {
    return {names(place), groups_.get(static_cast<compact_groups::place>(place))};
  }

  // A part of the group at a place, cheaper than the whole of it.
  group_names names(std::size_t place) const {
    const compact_key& key = groups_.key(static_cast<compact_groups::place>(place));
    const auto& [id, color] = origins_[key.origin];
    const context& rest = contexts_[key.context];
    return {rest.no_free, id, color, key.line, key.path, rest.process, rest.query};
  }
  bool no_free(std::size_t place) const {
    return contexts_[groups_.key(static_cast<compact_groups::place>(place)).context].no_free;
  }
  group_figures figures(std::size_t place) const {
    return groups_.get(static_cast<compact_groups::place>(place));
  }

  void push_back(const block_group& group) { groups_.add(groups_.add(key_of(group)), group); }

  using origin = std::pair<std::uint32_t, std::uint32_t>;  // id and colour
  struct context {
    std::uint32_t process = 0;
    std::uint32_t query = 0;
    bool no_free = false;

    friend bool operator==(const context&, const context&) = default;
    template <class Hash>
    friend Hash AbslHashValue(Hash state, const context& one) {
      return Hash::combine(std::move(state), one.process, one.query, one.no_free);
    }
  };

  // What the numbers in the keys of other groups stand for, as places in the lists of names.
  struct key_parts {
    std::vector<std::uint32_t> lines;
    std::vector<origin> origins;
    std::vector<context> contexts;
  };
  // Takes groups over, in place of any that are here; paths are places already. Groups without
  // blocks are left out. Groups with the same names become one, if there may be such.
  void adopt(compact_groups&& groups, const key_parts& parts, bool may_be_equal);

 private:
  compact_key key_of(const group_names& names) {
    return {names.line, names.path, origins_.add({names.id, names.color}),
            contexts_.add({names.process, names.query, names.no_free})};
  }

  compact_groups groups_;
  numbering<origin> origins_;
  numbering<context> contexts_;
};

}  // namespace kiv
