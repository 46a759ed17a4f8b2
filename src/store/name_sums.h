#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "profile/profile.h"

namespace kiv::store {

// What the groups of a name hold together.
struct name_sum {
  std::uint32_t place = 0;                  // of the name in its list
  std::uint32_t id = 0;                     // of a colour: the id of the blocks
  std::array<std::uint64_t, 5> bytes = {};  // allocated, leaked, live, at the peak, temporary
};

struct name_sum_list {
  std::string key;             // "id", "color", "line", "function", "process" or "query"
  std::vector<name_sum> sums;  // by place and id; of names that groups have
};

// The groups of a profile added up by each of their names, in one pass.
class name_sums {
 public:
  explicit name_sums(const profile& p);
  const std::vector<name_sum_list>& lists() const { return lists_; }

 private:
  std::vector<name_sum_list> lists_;
};

}  // namespace kiv::store
