#pragma once

#include <algorithm>
#include <utility>
#include <vector>

namespace kiv {

// The entries of a hashed book in ascending order of their keys, as tables list them. Looks into
// the book, which must stay as it is meanwhile.
template <class Map>
std::vector<const typename Map::value_type*> in_ascending_order(const Map& map) {
  std::vector<const typename Map::value_type*> entries;
  entries.reserve(map.size());
  for (const auto& entry : map) entries.push_back(&entry);
  std::sort(entries.begin(), entries.end(),
            [](const auto* a, const auto* b) { return a->first < b->first; });
  return entries;
}

}  // namespace kiv
