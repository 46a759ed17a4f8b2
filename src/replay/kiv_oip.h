#pragma once

#include <cstdint>
#include <memory>

#include "replay/call_graph.h"
#include "util/number_table.h"

namespace kiv {

class KivObject;
class diagnostics;
class function_table;

// An object in one process: gives the process a Func_rel of its own for each function, so that
// calls are counted per process. Which functions there are is settled at the first look-up; those
// announced later are not found. A Func_rel is made when it is first asked for.
class KivOip {
 public:
  // `object` must outlive this.
  explicit KivOip(const KivObject& object);

  // Null, and it is said, for a number outside the table. The table has as many places as the
  // object had functions; a number without function has an empty place.
  Func_rel* find_function(std::int32_t number, bool global, diagnostics& faults);

 private:
  struct table {
    const function_table* functions;
    std::size_t size = 0;
    std::uint32_t announcements = 0;
    number_table<std::unique_ptr<Func_rel>, 256> relations;
  };

  void fill_func_tables();

  table functions_;
  table globals_;
  bool filled_ = false;
};

}  // namespace kiv
