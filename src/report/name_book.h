#pragma once

#include <absl/container/flat_hash_map.h>

#include <array>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "profile/profile.h"
#include "report/measures.h"

namespace kiv::report {

// Numbers 0, 1, 2 ... for texts; equal texts have one number.
class text_pool {
 public:
  std::uint32_t add(std::string_view text);
  const std::string& operator[](std::uint32_t number) const { return texts_[number]; }
  std::size_t size() const { return texts_.size(); }

 private:
  std::deque<std::string> texts_;
  absl::flat_hash_map<std::string_view, std::uint32_t> numbers_;
};

// The same for pairs of numbers.
class pair_pool {
 public:
  using pair = std::pair<std::uint32_t, std::uint32_t>;
  std::uint32_t add(pair value);
  // Of a pair that is known not to be there yet.
  std::uint32_t add_new(pair value) {
    pairs_.push_back(value);
    return static_cast<std::uint32_t>(pairs_.size() - 1);
  }
  const pair& operator[](std::uint32_t number) const { return pairs_[number]; }
  std::size_t size() const { return pairs_.size(); }

 private:
  std::vector<pair> pairs_;
  std::size_t indexed_ = 0;  // so many pairs are in the index; those behind came by add_new()
  absl::flat_hash_map<pair, std::uint32_t> numbers_;
};

// Which number in a name book each place in a profile's lists has, by key. A function's place is
// that of the call path which ends in it.
using place_numbers = std::array<std::vector<std::uint32_t>, key_count>;

// The names by which blocks of several traces and runs are grouped: for each key, names that are
// equal have one number. Numbers and process ids of the traces play no part.
class name_book {
 public:
  name_book();

  place_numbers add(const profile& trace);

  std::size_t size(group_key key) const;
  // As it is shown and compared: "id name / colour name", "object:function". A call path is given
  // outermost function first, with " > " between them.
  std::string name(group_key key, std::uint32_t number) const;
  // Less than, equal to or greater than 0, in the order of the names; paths function by function.
  int compare(group_key key, std::uint32_t a, std::uint32_t b) const;

  // The functions of a call path as numbers, outermost first; none for the empty path.
  std::vector<std::uint32_t> frames(std::uint32_t path) const;
  // The node of a path: its parent and its innermost function. Parents come before children, and
  // number 0 is the empty path.
  const pair_pool::pair& path_node(std::uint32_t path) const { return paths_[path]; }

 private:
  int compare_pairs(const text_pool& first, const text_pool& second, pair_pool::pair a,
                    pair_pool::pair b) const;
  const std::vector<std::uint32_t>& path_ranks() const;

  text_pool ids_, color_names_, lines_, objects_, function_names_, processes_, queries_;
  pair_pool colors_;                               // id, colour name
  pair_pool functions_;                            // object, function name
  pair_pool paths_;                                // parent, function
  mutable std::vector<std::uint32_t> path_ranks_;  // made when first needed
};

}  // namespace kiv::report
