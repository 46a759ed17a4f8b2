#include "replay/kiv_object_db.h"

#include "trace/diagnostics.h"

namespace kiv {

KivObject* KivObject_db::get_object(std::uint32_t id) {
  KivObject* loaded = objects_.find(id);
  return loaded == nullptr ? &default_object_ : loaded;
}

void KivObject_db::add_object(std::uint32_t id, std::string_view name, diagnostics& faults) {
  if (objects_.find(id) != nullptr) {
    faults.object_loaded_twice(id);
    return;
  }
  objects_.assign(id, pool_.make(id, name, &function_memory_)).object_function_load(0, "top level");
}

}  // namespace kiv
