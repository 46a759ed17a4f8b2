#pragma once

#include <cstdint>
#include <deque>
#include <memory>

#include "replay/call_graph.h"
#include "util/number_table.h"

namespace kiv {

class KivObject;
class diagnostics;
class function_table;

// Where the functions of a process stay in their places.
class function_pool {
 public:
  Func_rel* make(const Func_loc* location) {
    if (functions_ == nullptr) functions_ = std::make_unique<std::deque<Func_rel>>();
    return &functions_->emplace_back(location);
  }

 private:
  std::unique_ptr<std::deque<Func_rel>> functions_;  // an empty one has its memory already
};

// An object in one process: gives the process a Func_rel of its own for each function, so that
// calls are counted per process. Which functions there are is settled at the first look-up; those
// announced later are not found. A Func_rel is made when it is first asked for.
class KivOip {
 public:
  // `object` must outlive this.
  explicit KivOip(const KivObject& object);

  // Null, and it is said, for a number outside the table. The table has as many places as the
  // object had functions; a number without function has an empty place.
  Func_rel* find_function(std::int32_t number, bool global, function_pool& pool,
                          diagnostics& faults) {
    table& wanted = global ? globals_ : functions_;
    Func_rel* known = wanted.relations.find(static_cast<std::uint32_t>(number));
    return known != nullptr ? known : make_function(wanted, number, pool, faults);
  }

 private:
  struct table {
    const function_table* functions;
    std::size_t size = 0;
    std::uint32_t announcements = 0;
    number_table<Func_rel*, 256> relations;  // of the process
  };

  void fill_func_tables();
  Func_rel* make_function(table& wanted, std::int32_t number, function_pool& pool,
                          diagnostics& faults);

  table functions_;
  table globals_;
  bool filled_ = false;
};

}  // namespace kiv
