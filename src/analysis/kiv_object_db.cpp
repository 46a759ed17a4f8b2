#include "analysis/kiv_object_db.h"

#include <iostream>
#include <utility>

#include "output/csv_row.h"

namespace kiv {

KivObjectLoad* KivObject_db::get_object(std::uint32_t id) {
  const auto entry = objects_.find(id);
  return entry == objects_.end() ? &default_object_ : entry->second.get();
}

void KivObject_db::add_object(std::unique_ptr<KivObjectLoad> object) {
  const std::uint32_t id = object->id_of_obj;
  if (!objects_.try_emplace(id, std::move(object)).second) {
    std::cout << "Error oic_id " << id << " already found!\n";
  }
}

void KivObject_db::dump_db_obj(std::ostream& os, std::string_view run_columns) const {
  csv_row(os).raw(run_columns).col(0).col("(no object)").end_line();
  for (const auto& [id, object] : objects_) {
    csv_row row(os);
    row.raw(run_columns);
    object->columns(row);
    row.end_line();
  }
}

void KivObject_db::dump_db_objfun(std::ostream& os, std::string_view run_columns) const {
  csv_row(os).raw(run_columns).col("(no object)").col(0).col(0).col("(no function)").end_line();
  for (const auto& [id, object] : objects_) object->dump_funcs(os, run_columns);
}

}  // namespace kiv
