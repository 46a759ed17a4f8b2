#pragma once

#include <absl/container/flat_hash_set.h>
#include <absl/hash/hash.h>

#include "profile/compact_groups.h"

namespace kiv {

// Finds groups by their keys. A key must not change while its group is in here.
class group_index {
 public:
  using place = compact_groups::place;

  // `groups` must stay where they are.
  explicit group_index(const compact_groups& groups) : places_(0, hash{&groups}, equal{&groups}) {}

  // Null when there is no such group.
  const place* find(const compact_key& key) const {
    const auto entry = places_.find(key);
    return entry == places_.end() ? nullptr : &*entry;
  }
  // The group with the key; where there is none, `make` is called for its place.
  template <class Make>
  place find_or_make(const compact_key& key, Make make) {
    return *places_.lazy_emplace(key, [&](const auto& construct) { construct(make()); });
  }
  // The group with the key of `which`, which becomes that group if there is none.
  place find_or_insert(place which) { return *places_.insert(which).first; }
  void erase(place which) { places_.erase(which); }
  void clear() { places_ = set(0, places_.hash_function(), places_.key_eq()); }
  void reserve(std::size_t count) { places_.reserve(count); }
  std::size_t size() const { return places_.size(); }

 private:
  struct hash {
    using is_transparent = void;
    std::size_t operator()(const compact_key& key) const { return absl::Hash<compact_key>{}(key); }
    std::size_t operator()(place which) const { return (*this)(groups->key(which)); }
    const compact_groups* groups;
  };
  struct equal {
    using is_transparent = void;
    bool operator()(place a, place b) const { return groups->key(a) == groups->key(b); }
    bool operator()(place a, const compact_key& b) const { return groups->key(a) == b; }
    bool operator()(const compact_key& a, place b) const { return groups->key(b) == a; }
    const compact_groups* groups;
  };
  using set = absl::flat_hash_set<place, hash, equal>;
  set places_;
};

}  // namespace kiv
