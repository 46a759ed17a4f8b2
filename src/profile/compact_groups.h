#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "profile/amount.h"

namespace kiv {

// What the blocks of a group share, as numbers that the owner of the groups gives.
struct compact_key {
  std::uint32_t line = 0;
  std::uint32_t path = 0;
  std::uint32_t origin = 0;   // allocation id and colour
  std::uint32_t context = 0;  // the rest

  friend bool operator==(const compact_key&, const compact_key&) = default;
  template <class Hash>
  friend Hash AbslHashValue(Hash state, const compact_key& key) {
    return Hash::combine(std::move(state), std::uint64_t{key.line} << 32 | key.path,
                         std::uint64_t{key.origin} << 32 | key.context);
  }
};

// Groups of blocks with their figures. Most groups of a trace with many have had one block, never
// resized: such a group takes 32 bytes, any other about 230.
class compact_groups {
 public:
  using place = std::uint32_t;

  // Places, those that were released included.
  std::size_t size() const { return size_; }
  std::size_t released() const { return released_; }
  // A group without blocks, in a place that was released if there is one.
  place add(const compact_key& key);
  // Gives the place of a group without blocks to one that is added later.
  void release(place which);
  // Takes the last group away. Places that were released before are not given out any more.
  void drop_last();

  const compact_key& key(place which) const { return at(which).key; }
  void set_key(place which, const compact_key& key) { at(which).key = key; }

  // One block more, live.
  void make_block(place which, std::uint64_t size, std::uint64_t tot_size);
  // The size of a live block changed, modulo 2^64.
  void resize_block(place which, std::uint64_t size_change, std::uint64_t tot_size_change);
  // A live block ends; `how` is freed, left_with_id, reset or released.
  void end_block(place which, figure how, const amount& block);
  // The block that was freed last was temporary; `block` as it was made.
  void count_temporary(place which, const amount& block);
  // Most memory is live now. What was live at the latest peak is known without a second pass: a
  // group's live figure is copied when it first changes afterwards.
  void peak_reached() { ++peaks_; }
  // Copies it for all groups. To be called before figures are asked for.
  void settle_peaks();

  bool is_empty(place which) const { return at(which).state == no_block; }
  group_figures get(place which) const;
  // Adds the figures of others, up to the latest peak.
  void add(place which, const group_figures& more);
  // The figures of one group are added to those of another; the first has no blocks then.
  void move_figures(place from, place to);

  // Whether all blocks of the group have ended.
  bool is_over(place which) const;
  // Puts all that is known of a group that is over behind `into`.
  void save(place which, std::string& into);
  // It has no blocks then, and its place is released.
  void forget(place which);
  // Puts the group that stands at the beginning of `saved`, which loses it, in the place of one
  // without blocks. False, and nothing is changed, when only a part of it is there.
  bool load(std::string_view& saved, place which);

 private:
  // What `state` says of a group that never had more than one block.
  static constexpr std::uint32_t no_block = 0xffffffff;
  static constexpr std::uint32_t single = 0x80000000;  // with the block's state, a figure, and:
  static constexpr std::uint32_t single_at_peak = 0x10;
  static constexpr std::uint32_t single_temporary = 0x20;
  static constexpr std::uint32_t single_state = 0xf;

  struct group {
    compact_key key;
    std::uint32_t state = no_block;  // else a place in full_, or `single` with the block's state
    std::uint32_t size = 0;          // of the single block; of a released place the next one
    std::uint32_t tot_size = 0;
    std::uint32_t peaks_seen = 0;  // the number, modulo 2^32, of the latest peak that counts here
  };

  // The figures of a group. What the making of a block changes lies side by side, and so does what
  // its end changes: they are in the cache together.
  struct full_figures {
    full_figures& operator=(const group_figures& from);
    full_figures& operator+=(const group_figures& more);
    operator group_figures() const;
    amount& operator[](figure which) { return amounts[place_of(which)]; }
    const amount& operator[](figure which) const { return amounts[place_of(which)]; }
    static constexpr std::size_t place_of(figure which) {
      constexpr std::array<std::uint8_t, figure_count> places = {3, 1, 5, 6, 7, 2, 4, 0};
      return places[static_cast<std::size_t>(which)];
    }

    // Temporary, freed, live, made; then the others.
    std::array<amount, figure_count> amounts{};
    std::uint64_t resizes = 0;
  };

  static constexpr place chunk_size = 1024;
  static constexpr place full_chunk_size = 128;

  group& at(place which) { return chunks_[which / chunk_size][which % chunk_size]; }
  const group& at(place which) const { return chunks_[which / chunk_size][which % chunk_size]; }
  full_figures& full(const group& one) {
    return full_[one.state / full_chunk_size][one.state % full_chunk_size];
  }
  const full_figures& full(const group& one) const {
    return full_[one.state / full_chunk_size][one.state % full_chunk_size];
  }
  static bool has_full(const group& one) { return (one.state & single) == 0; }
  static bool is_single(const group& one, figure state) {
    return !has_full(one) && one.state != no_block &&
           (one.state & single_state) == static_cast<std::uint32_t>(state);
  }
  static amount single_block(const group& one) { return {1, one.size, one.tot_size}; }
  static group_figures unpacked(const group& one);
  // Whether the figures are those of a single block; then `into` holds them.
  static bool pack(const group_figures& figures, group& into);

  void settle_peak(group& changed);
  full_figures& widen(group& one);
  void forget_full(const group& one);

  std::vector<std::vector<group>> chunks_;  // all full but the last
  std::vector<std::vector<full_figures>> full_;
  std::vector<std::uint32_t> free_full_;
  place size_ = 0;
  std::size_t released_ = 0;
  place first_released_ = 0;  // while there are any; `size` of each has the next one
  std::uint32_t peaks_ = 0;
};

}  // namespace kiv
