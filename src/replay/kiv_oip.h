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

// The functions of a process, numbered from 1. They stay in their places.
class function_list {
 public:
  std::uint32_t add(const Func_loc* location) {
    if (functions_ == nullptr) functions_ = std::make_unique<std::deque<Func_rel>>();
    functions_->emplace_back(location);
    return static_cast<std::uint32_t>(functions_->size());
  }
  Func_rel* operator[](std::uint32_t number) { return &(*functions_)[number - 1]; }

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

  // The number in `all` of a function of the object. 0, and it is said, for a number outside the
  // table. The table has as many places as the object had functions; a number without function has
  // an empty place.
  std::uint32_t find_function(std::int32_t number, bool global, function_list& all,
                              diagnostics& faults) {
    table& wanted = global ? globals_ : functions_;
    const std::uint32_t* known = wanted.relations.find(static_cast<std::uint32_t>(number));
    return known != nullptr ? *known : add_function(wanted, number, all, faults);
  }

 private:
  // The number of a function in its process, or none.
  struct relation {
    explicit operator bool() const { return number != 0; }
    std::uint32_t& operator*() { return number; }
    const std::uint32_t& operator*() const { return number; }
    std::uint32_t number = 0;
  };
  struct table {
    const function_table* functions;
    std::size_t size = 0;
    std::uint32_t announcements = 0;
    number_table<relation, 256> relations;
  };

  void fill_func_tables();
  std::uint32_t add_function(table& wanted, std::int32_t number, function_list& all,
                             diagnostics& faults);

  table functions_;
  table globals_;
  bool filled_ = false;
};

}  // namespace kiv
