#pragma once

#include <absl/container/flat_hash_map.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "util/ascending.h"

namespace kiv {

// What is kept per number of something that counts from 0 and mostly has few numbers: processes,
// objects, allocation ids, and the colours of one. Numbers below `low_limit` are an array access
// away; a trace may name any other number, so those cost memory only where they occur. A slot holds
// a value or none: an std::optional, or an std::unique_ptr where values must stay in their places.
template <class Slot, std::uint32_t low_limit = 65536>
class number_table {
 public:
  // Says that numbers below `count` are likely to come; a large count is not believed.
  void expect(std::uint32_t count) { low_.reserve(std::min<std::uint32_t>(count, 8)); }

  // Null when nothing is kept for the number.
  auto* find(std::uint32_t number) { return value_in(find_slot(*this, number)); }
  auto* find(std::uint32_t number) const { return value_in(find_slot(*this, number)); }

  // Keeps the value in place of any that the number had.
  auto& assign(std::uint32_t number, Slot value) {
    Slot& slot = make_slot(number);
    slot = std::move(value);
    return *slot;
  }

  template <class Action>
  void for_each(Action action) {
    for (auto& slot : low_) {
      if (slot) action(*slot);
    }
    if (high_ == nullptr) return;
    for (auto& [number, slot] : *high_) action(*slot);
  }
  // In ascending order of the numbers.
  template <class Action>
  void for_each_ascending(Action action) const {
    for (const auto& slot : low_) {
      if (slot) action(*slot);
    }
    if (high_ == nullptr) return;
    for (const auto* entry : in_ascending_order(*high_)) action(*entry->second);
  }

 private:
  using high_map = absl::flat_hash_map<std::uint32_t, Slot>;

  static auto* value_in(auto* slot) { return slot != nullptr && *slot ? &**slot : nullptr; }

  // A slot of `table`, constant or not; null when the number has none.
  static auto* find_slot(auto& table, std::uint32_t number) {
    decltype(table.low_.data()) none = nullptr;
    if (number < table.low_.size()) return table.low_.data() + number;
    if (number < low_limit || table.high_ == nullptr) return none;
    const auto entry = table.high_->find(number);
    return entry == table.high_->end() ? none : &entry->second;
  }
  Slot& make_slot(std::uint32_t number) {
    if (number < low_limit) {
      if (number >= low_.size()) low_.resize(number + 1);
      return low_[number];
    }
    if (high_ == nullptr) high_ = std::make_unique<high_map>();
    return (*high_)[number];
  }

  std::vector<Slot> low_;
  std::unique_ptr<high_map> high_;
};

template <class Slot>
using color_table = number_table<Slot, 64>;

}  // namespace kiv
