#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

#include "replay/call_graph.h"

namespace kiv {

// The functions of one object: number -> location. A number announced again gets a new location;
// the earlier ones stay for those who looked before.
class function_table {
 public:
  explicit function_table(std::pmr::memory_resource* memory) : functions_(memory) {}

  void announce(std::uint32_t object_id, std::int32_t number, std::string_view name);

  // How many numbers have a function, and how many announcements there were.
  std::size_t size() const { return functions_.size(); }
  std::uint32_t announcements() const { return announcements_; }

  // The location that the number had after so many announcements; null when it had none.
  const Func_loc* find(std::int32_t number, std::uint32_t after_announcements) const;

  // Calls `action` with each number and the name that it has now, in ascending order.
  template <class Action>
  void for_each(Action action) const {
    for (const auto& [number, locations] : functions_) action(number, locations.newest().name);
  }

 private:
  // The locations that one number had, which mostly is one. They stay in their places.
  struct announced_locations {
    const Func_loc& newest() const { return later.empty() ? first : *later.back(); }
    Func_loc first;
    std::vector<std::unique_ptr<Func_loc>> later;  // the newest last
  };

  // A copy that lives as long as the places do.
  std::string_view keep(std::string_view name);

  std::uint32_t announcements_ = 0;
  std::pmr::map<std::int32_t, announced_locations> functions_;
};

// A loaded object with its functions and Hosk functions.
class KivObject {
 public:
  // The places and names of functions come from `memory`, which alone gives them back.
  KivObject(std::uint32_t id, std::string_view object_name, std::pmr::memory_resource* memory)
      : id_of_obj(id), name(object_name), functions(memory), globals(memory) {}

  void object_function_load(std::int32_t number, std::string_view function_name) {
    functions.announce(id_of_obj, number, function_name);
  }
  void object_global_load(std::int32_t number, std::string_view function_name) {
    globals.announce(id_of_obj, number, function_name);
  }

  const std::uint32_t id_of_obj;
  const std::string name;
  function_table functions;
  function_table globals;
};

}  // namespace kiv
