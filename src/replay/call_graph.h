#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kiv {

class Func_rel;

// A place in the code: a function of an object, or a special location of a process.
struct Func_loc {
  std::uint32_t object_id = 0;  // of a special location: the process's pid
  std::int32_t function_number = 0;
  std::string_view name;        // kept by the object's book, or by the process
  std::uint32_t announced = 0;  // the object's announcements up to and with this one
  // An observer's number for the function; 0 until it gives one.
  mutable std::uint32_t observed_as = 0;

  // Whether it is a function of an object, not one of the process itself.
  bool in_object() const { return function_number >= 1; }
};

// Object and number of a function, as records name it. 0 is no function's: numbers from 1 on are
// those of functions, others those of a process's own locations.
using function_key = std::uint64_t;
constexpr function_key key_of_function(std::uint32_t object_id, std::int32_t number) {
  return std::uint64_t{static_cast<std::uint32_t>(number)} << 32 | object_id;
}
constexpr bool names_function(function_key key) { return static_cast<std::int64_t>(key) >> 32 > 0; }

// Some of the functions that a function calls, with the arcs that lead to them.
struct callee_list {
  static constexpr std::size_t length = 4;

  std::array<function_key, length> callees{};  // 0 from the first free place on
  std::array<std::uint32_t, length> arcs{};
};

// The list that goes on where another one is full.
struct further_callees {
  callee_list list;
  std::uint32_t further = 0;  // number of the one after it; 0: none
};

// A function as one process's call graph sees it: with the first of what it calls, a line of the
// processor's cache.
class alignas(64) Func_rel {
 public:
  // `at` may be null: the number of a function that the object does not hold.
  explicit Func_rel(const Func_loc* at) : location(at) {}

  std::string_view name() const {  // empty without location
    return location == nullptr ? std::string_view() : location->name;
  }

  const Func_loc* const location;
  callee_list callees;
  std::uint32_t further = 0;              // number of the list after `callees`; 0: none
  mutable std::uint32_t observed_as = 0;  // as that of the location
};
static_assert(sizeof(Func_rel) == 64);

// One caller-to-callee edge of one process; its number is its place in the process's arc table.
struct FuncArc {
  Func_rel* from;
  Func_rel* to;
};

// One entry of a call stack.
struct Func_context {
  Func_rel* function;  // null for the base of a stack without special 0
  function_key key;    // by which the record named it; 0 for a base
  std::uint32_t arc;   // through which it was entered
  // An observer's name for the call path that ends here; 0 until it gives one.
  mutable std::uint32_t path = 0;
};

}  // namespace kiv
