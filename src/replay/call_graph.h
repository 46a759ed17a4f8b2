#pragma once

#include <cstdint>
#include <string_view>

namespace kiv {

class KivProcess;

// A place in the code: a function of an object, or a special location of a process.
struct Func_loc {
  std::uint32_t object_id = 0;  // of a special location: the process's pid
  std::int32_t function_number = 0;
  std::string_view name;        // kept by the object's book, or by the process
  std::uint32_t announced = 0;  // the object's announcements up to and with this one

  // Whether it is a function of an object, not one of the process itself.
  bool in_object() const { return function_number >= 1; }
};

// A function as one process's call graph sees it.
class Func_rel {
 public:
  // `at` may be null: the number of a function that the object does not hold.
  explicit Func_rel(const Func_loc* at) : location(at) {}

  // Counts a call from this function into `callee`; the first one makes a new arc of the process.
  // Returns the arc's number.
  std::uint32_t update_child(Func_rel* callee, KivProcess& process);

  std::string_view name() const {  // empty without location
    return location == nullptr ? std::string_view() : location->name;
  }
  bool is_at(std::uint32_t object_id, std::int32_t number) const {
    return location != nullptr && location->object_id == object_id &&
           location->function_number == number;
  }

  const Func_loc* const location;
  std::uint32_t calls = 0;  // through arcs that existed already

  // The arcs from here that are found by following them from one to the next: the first few.
  std::uint32_t newest_arc = 0;
  std::uint32_t followed_arcs = 0;
  // An observer's number for the function; 0 until it gives one.
  mutable std::uint32_t observed_as = 0;
};

// One caller-to-callee edge of one process; its number is its place in the process's arc table.
struct FuncArc {
  Func_rel* from;
  Func_rel* to;
  std::uint32_t count = 0;     // calls along this arc
  std::uint32_t next_arc = 0;  // the one followed next from the same caller
};

// One entry of a call stack.
struct Func_context {
  Func_rel* function;  // null for the base of a stack without special 0
  std::uint32_t arc;   // through which the function was entered
  // An observer's name for the call path that ends here; 0 until it gives one.
  mutable std::uint32_t path;
};

}  // namespace kiv
