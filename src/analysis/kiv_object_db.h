#pragma once

#include <absl/container/btree_map.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string_view>

#include "analysis/kiv_object.h"

namespace kiv {

// The book of loaded objects: object id -> object. Unknown ids have the default object, which
// takes functions too but appears in no table.
class KivObject_db {
 public:
  explicit KivObject_db(kiv_reader* reader) : default_object_(reader, "Illegal Object") {}

  // Never null.
  KivObjectLoad* get_object(std::uint32_t id);

  // An id that is loaded already keeps its object, with a message on the standard output; the
  // refused object is dropped.
  void add_object(std::unique_ptr<KivObjectLoad> object);

  void dump_db_obj(std::ostream& os, std::string_view run_columns) const;
  void dump_db_objfun(std::ostream& os, std::string_view run_columns) const;

 private:
  KivObjectLoad default_object_;
  absl::btree_map<std::uint32_t, std::unique_ptr<KivObjectLoad>> objects_;
};

}  // namespace kiv
