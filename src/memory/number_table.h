#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace kiv {

// What is kept per number of something that counts from 0 and mostly has few numbers: allocation
// ids, and the colours of one. Numbers below `low_limit` are an array access away; a trace may name
// any other number, so those cost memory only where they occur.
template <class T, std::uint32_t low_limit>
class number_table {
 public:
  // Null when nothing is kept for the number.
  T* find(std::uint32_t number) const {
    if (number < low_.size()) return low_[number].get();
    return number < low_limit ? nullptr : find_high(number);
  }

  // Keeps the value in place of any that the number had.
  T& assign(std::uint32_t number, std::unique_ptr<T> value) {
    T& kept = *value;
    if (number < low_limit) {
      if (number >= low_.size()) low_.resize(number + 1);
      low_[number] = std::move(value);
    } else {
      if (high_ == nullptr) high_ = std::make_unique<high_map>();
      (*high_)[number] = std::move(value);
    }
    return kept;
  }

  // In ascending order of the numbers.
  template <class Action>
  void for_each(Action action) const {
    for (const auto& entry : low_) {
      if (entry != nullptr) action(*entry);
    }
    if (high_ == nullptr) return;
    for (const auto& [number, entry] : *high_) action(*entry);
  }

 private:
  using high_map = std::map<std::uint32_t, std::unique_ptr<T>>;

  T* find_high(std::uint32_t number) const {
    if (high_ == nullptr) return nullptr;
    const auto entry = high_->find(number);
    return entry == high_->end() ? nullptr : entry->second.get();
  }

  std::vector<std::unique_ptr<T>> low_;
  std::unique_ptr<high_map> high_;
};

template <class T>
using color_table = number_table<T, 64>;

}  // namespace kiv
