#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace kiv {

// Numbers 0, 1, 2 ... for values; equal values have one number.
template <class Value>
class numbering {
 public:
  // The number of a value, a new one where it has none yet.
  std::uint32_t add(const Value& value) {
    if (known_last(value)) return last_;
    const auto [entry, is_new] =
        numbers_.try_emplace(value, static_cast<std::uint32_t>(values_.size()));
    if (is_new) values_.push_back(value);
    return last_ = entry->second;
  }
  // Null when the value has no number.
  const std::uint32_t* find(const Value& value) const {
    const auto entry = numbers_.find(value);
    return entry == numbers_.end() ? nullptr : &entry->second;
  }
  const Value& operator[](std::uint32_t number) const { return values_[number]; }
  std::size_t size() const { return values_.size(); }

 private:
  // Equal values often come one after another.
  bool known_last(const Value& value) const {
    return last_ < values_.size() && values_[last_] == value;
  }

  std::vector<Value> values_;
  absl::flat_hash_map<Value, std::uint32_t> numbers_;
  std::uint32_t last_ = 0;
};

}  // namespace kiv
