#include "analysis/kiv_object_db.h"

#include <iostream>
#include <utility>

#include "output/csv_row.h"

namespace kiv {

KivObjectLoad* KivObject_db::get_object(std::uint32_t id) {
  KivObjectLoad* loaded = objects_.find(id);
  return loaded == nullptr ? &default_object_ : loaded;
}

void KivObject_db::add_object(object_ptr object) {
  const std::uint32_t id = object->id_of_obj;
  if (objects_.find(id) != nullptr) {
    std::cout << "Error oic_id " << id << " already found!\n";
    return;
  }
  objects_.assign(id, std::move(object)).object_function_load(0, "top level");
}

void KivObject_db::dump_db_obj(std::ostream& os, std::string_view run_columns) const {
  csv_row(os).raw(run_columns).col(0).col("(no object)").end_line();
  objects_.for_each_ascending([&](const KivObjectLoad& object) {
    csv_row row(os);
    row.raw(run_columns);
    object.columns(row);
    row.end_line();
  });
}

void KivObject_db::dump_db_objfun(std::ostream& os, std::string_view run_columns) const {
  csv_row(os).raw(run_columns).col("(no object)").col(0).col(0).col("(no function)").end_line();
  objects_.for_each_ascending(
      [&](const KivObjectLoad& object) { object.dump_funcs(os, run_columns); });
}

}  // namespace kiv
