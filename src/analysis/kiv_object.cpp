#include "analysis/kiv_object.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "events/event_fields.h"
#include "memory/kiv_reserve_id_db.h"
#include "memory/reserve_type.h"
#include "output/csv_row.h"

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

void function_table::dump(std::ostream& os, std::string_view run_columns,
                          std::string_view object_name, std::uint32_t object_id) const {
  for (const auto& [number, locations] : functions_) {
    csv_row row(os);
    row.raw(run_columns).col(object_name).cols(object_id, number);
    row.col(locations.newest().name).end_line();
  }
}

void KivObjectLoad::setelems() {
  readelem(id_of_obj);
  // The allocation id's text opens with its four-letter kind, as in "oic:name".
  name = text_from(reader()->reserve_ids().get_reserve_id(id_of_obj)->reserve_type, 4);
  if (name == ":0:init") name = "init";
}

void KivObjectLoad::object_function_load(std::int32_t number, std::string_view function_name) {
  functions.announce(id_of_obj, number, function_name);
}

void KivObjectLoad::object_global_load(std::int32_t number, std::string_view function_name) {
  globals.announce(id_of_obj, number, function_name);
}

void KivObjectLoad::dump_funcs(std::ostream& os, std::string_view run_columns) const {
  functions.dump(os, run_columns, name, id_of_obj);
}

}  // namespace kiv
