#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "util/number_table.h"

namespace kiv {

// Numbers 0, 1, 2 ... for the locations in code that occur. Looking up a small location takes a few
// instructions.
class location_numbers {
 public:
  // Null when the location has no number.
  const std::uint32_t* find(std::int64_t location) const {
    if (is_short(location)) return short_.find(static_cast<std::uint32_t>(location));
    const auto entry = long_.find(location);
    return entry == long_.end() ? nullptr : &entry->second;
  }
  std::uint32_t add(std::int64_t location) {
    if (const std::uint32_t* known = find(location)) return *known;
    const std::uint32_t next = add_value(location);
    if (is_short(location)) {
      short_.assign(static_cast<std::uint32_t>(location), next);
    } else {
      long_.emplace(location, next);
    }
    return next;
  }
  // The number for what has no location.
  std::uint32_t none() {
    if (!none_) none_ = add_value(std::nullopt);
    return *none_;
  }
  const std::vector<std::optional<std::int64_t>>& all() const { return all_; }

 private:
  static bool is_short(std::int64_t location) {
    return location >= 0 && location <= std::numeric_limits<std::uint32_t>::max();
  }
  std::uint32_t add_value(std::optional<std::int64_t> location) {
    all_.push_back(location);
    return static_cast<std::uint32_t>(all_.size() - 1);
  }

  number_table<std::optional<std::uint32_t>> short_;
  absl::flat_hash_map<std::int64_t, std::uint32_t> long_;
  std::optional<std::uint32_t> none_;
  std::vector<std::optional<std::int64_t>> all_;
};

// The same for the colours of allocation ids.
class color_numbers {
 public:
  struct value {
    std::uint32_t id;
    std::optional<std::uint32_t> color;  // none: blocks of the id whatever their colour
  };

  const std::uint32_t* find(std::uint32_t id, std::uint32_t color) const {
    const auto entry = numbers_.find(key_of(id, color));
    return entry == numbers_.end() ? nullptr : &entry->second;
  }
  std::uint32_t add(std::uint32_t id, std::uint32_t color) {
    const auto [entry, is_new] = numbers_.try_emplace(key_of(id, color), next());
    if (is_new) all_.push_back({id, color});
    return entry->second;
  }
  std::uint32_t any(std::uint32_t id) {
    const auto [entry, is_new] = any_.try_emplace(id, next());
    if (is_new) all_.push_back({id, std::nullopt});
    return entry->second;
  }
  const std::vector<value>& all() const { return all_; }

 private:
  static std::uint64_t key_of(std::uint32_t id, std::uint32_t color) {
    return std::uint64_t{id} << 32 | color;
  }
  std::uint32_t next() const { return static_cast<std::uint32_t>(all_.size()); }

  absl::flat_hash_map<std::uint64_t, std::uint32_t> numbers_;
  absl::flat_hash_map<std::uint32_t, std::uint32_t> any_;
  std::vector<value> all_;
};

}  // namespace kiv
