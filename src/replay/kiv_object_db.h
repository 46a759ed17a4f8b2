#pragma once

#include <cstdint>
#include <memory_resource>
#include <string_view>

#include "replay/kiv_object.h"
#include "util/number_table.h"
#include "util/object_pool.h"

namespace kiv {

class diagnostics;

// The book of loaded objects: object id -> object. Unknown ids have the default object, which
// takes functions too but appears in no table.
class KivObject_db {
 public:
  KivObject_db() : default_object_(0, "Illegal Object", &function_memory_) {}

  // Never null.
  KivObject* get_object(std::uint32_t id);

  // Gives the object its function 0, the top level of its code. An id that is loaded already keeps
  // its object, and that is said.
  void add_object(std::uint32_t id, std::string_view name, diagnostics& faults);

  template <class Action>
  void for_each_ascending(Action action) const {
    objects_.for_each_ascending(action);
  }

 private:
  std::pmr::monotonic_buffer_resource function_memory_;
  KivObject default_object_;
  object_pool<KivObject> pool_;
  number_table<object_pool<KivObject>::pointer> objects_;
};

}  // namespace kiv
