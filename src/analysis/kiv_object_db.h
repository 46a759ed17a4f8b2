#pragma once

#include <cstdint>
#include <memory_resource>
#include <ostream>
#include <string_view>

#include "analysis/kiv_object.h"
#include "memory/number_table.h"
#include "memory/object_pool.h"

namespace kiv {

// The book of loaded objects: object id -> object. Unknown ids have the default object, which
// takes functions too but appears in no table.
class KivObject_db {
 public:
  explicit KivObject_db(kiv_reader* reader)
      : reader_(reader), default_object_(reader, &function_memory_, "Illegal Object") {}

  // Never null.
  KivObjectLoad* get_object(std::uint32_t id);

  using object_ptr = object_pool<KivObjectLoad>::pointer;
  // An object to be decoded, in no book yet.
  object_ptr make_object() { return pool_.make(reader_, &function_memory_); }
  // Gives the object its function 0, the top level of its code. An id that is loaded already keeps
  // its object, with a message on the standard output; the refused object is dropped.
  void add_object(object_ptr object);

  void dump_db_obj(std::ostream& os, std::string_view run_columns) const;
  void dump_db_objfun(std::ostream& os, std::string_view run_columns) const;

 private:
  kiv_reader* reader_;
  std::pmr::monotonic_buffer_resource function_memory_;
  KivObjectLoad default_object_;
  object_pool<KivObjectLoad> pool_;
  number_table<object_ptr> objects_;
};

}  // namespace kiv
