#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "profile/block_groups.h"
#include "profile/code_numbers.h"
#include "profile/compact_groups.h"
#include "profile/group_index.h"
#include "util/numbering.h"
#include "util/scratch_file.h"

namespace kiv {

class name_lists;

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
};

// The groups of blocks of a trace while it is replayed. A handle holds as long as the group has
// live blocks or belongs to the open bracket.
class group_table {
 public:
  using handle = compact_groups::place;

  group_table() : index_(groups_) {}
  group_table(const group_table&) = delete;
  group_table& operator=(const group_table&) = delete;

  // The group of a new block. When there are too many groups, a new key gets one without line,
  // colour, path and query.
  handle find_or_add(const group_key& key);

  compact_groups& figures() { return groups_; }
  std::uint32_t id(handle which) const { return origins_.all()[groups_.key(which).origin].id; }
  bool no_free(handle which) const { return contexts_[groups_.key(which).context].no_free; }

  // Gives a group of the open bracket the statement that it had. A group that has that key already
  // takes the figures over: it comes back, else the group itself.
  handle set_query(handle which, std::uint64_t query);

  // Hands over every group under its names. The table is empty then. Throws std::runtime_error when
  // what was set aside cannot be read.
  block_groups take(name_lists& names);

  // How many blocks went to groups that stand for those that were too many.
  std::uint64_t blocks_folded() const { return blocks_folded_; }

 private:
  static constexpr std::size_t max_groups = 1'000'000;  // those aside included
  static constexpr std::size_t least_groups_to_set_aside = 196'608;

  struct context {
    std::uint32_t process = 0;
    std::uint64_t query = group_key::no_query;
    bool no_free = false;
    friend bool operator==(const context&, const context&) = default;
    template <class Hash>
    friend Hash AbslHashValue(Hash state, const context& one) {
      return Hash::combine(std::move(state), one.process, one.query, one.no_free);
    }
  };

  handle group_with(const compact_key& key);
  // None when a part of the key has not occurred yet.
  std::optional<compact_key> known_key(const group_key& key) const;
  handle fold(const group_key& key);
  bool may_set_aside(handle which) const;
  // Sets groups aside whose blocks have all ended, so that memory follows the live blocks.
  void set_aside();
  void bring_back();

  compact_groups groups_;
  group_index index_;
  location_numbers lines_;
  color_numbers origins_;
  numbering<context> contexts_;
  // By path, the group that was asked for last; one more than its place, 0: none. Mostly it is the
  // one that the next block of the path belongs to.
  std::vector<handle> latest_;
  std::uint64_t blocks_folded_ = 0;

  scratch_file aside_;
  std::size_t groups_aside_ = 0;
  std::size_t set_aside_at_ = least_groups_to_set_aside;
};

}  // namespace kiv
