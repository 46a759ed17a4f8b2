#include "replay/kiv_object.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace kiv {

void function_table::announce(std::uint32_t object_id, std::int32_t number, std::string_view name) {
  const Func_loc location{object_id, number, keep(name), ++announcements_};
  const auto entry = functions_.find(number);
  if (entry == functions_.end()) {
    functions_.try_emplace(number, announced_locations{location, {}});
  } else {
    entry->second.later.push_back(std::make_unique<Func_loc>(location));
  }
}

std::string_view function_table::keep(std::string_view name) {
  if (name.empty()) return {};
  void* place = functions_.get_allocator().resource()->allocate(name.size(), alignof(char));
  return {static_cast<const char*>(std::memcpy(place, name.data(), name.size())), name.size()};
}

const Func_loc* function_table::find(std::int32_t number, std::uint32_t after_announcements) const {
  const auto entry = functions_.find(number);
  if (entry == functions_.end()) return nullptr;
  const auto& [first, later] = entry->second;
  const auto unseen = std::partition_point(later.begin(), later.end(), [=](const auto& location) {
    return location->announced <= after_announcements;
  });
  if (unseen != later.begin()) return std::prev(unseen)->get();
  return first.announced <= after_announcements ? &first : nullptr;
}

}  // namespace kiv
