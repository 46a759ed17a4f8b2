#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace kiv {

// What is kept per colour number of an allocation id. Colours are numbered from 0 and few, so the
// low ones are an array access away; a trace may name any number up to its id's colour count, so
// high ones cost memory only where they occur.
template <class T>
class color_table {
 public:
  T* find(std::uint32_t color) const {
    if (color < low_.size()) return low_[color].get();
    if (color < low_colors || high_ == nullptr) return nullptr;
    const auto entry = high_->find(color);
    return entry == high_->end() ? nullptr : entry->second.get();
  }

  // Stores a value in place of any that the colour had.
  T& assign(std::uint32_t color, T value) {
    auto owned = std::make_unique<T>(std::move(value));
    T& stored = *owned;
    if (color < low_colors) {
      if (color >= low_.size()) low_.resize(color + 1);
      low_[color] = std::move(owned);
    } else {
      if (high_ == nullptr) high_ = std::make_unique<high_map>();
      (*high_)[color] = std::move(owned);
    }
    return stored;
  }

  template <class Action>
  void for_each(Action action) const {
    for (const auto& entry : low_) {
      if (entry != nullptr) action(*entry);
    }
    if (high_ == nullptr) return;
    for (const auto& [color, entry] : *high_) action(*entry);
  }

 private:
  using high_map = std::map<std::uint32_t, std::unique_ptr<T>>;
  static constexpr std::uint32_t low_colors = 64;

  std::vector<std::unique_ptr<T>> low_;
  std::unique_ptr<high_map> high_;
};

}  // namespace kiv
