#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <memory_resource>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/call_graph.h"
#include "events/kiv_event.h"

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

  // One row of `functions` per number in ascending order, for the object of that name and id.
  void dump(std::ostream& os, std::string_view run_columns, std::string_view object_name,
            std::uint32_t object_id) const;

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

// A loaded object: the record that announces it, and its functions and Hosk functions.
class KivObjectLoad final : public KivContext {
 public:
  // The places and names of functions come from `memory`, which alone gives them back.
  KivObjectLoad(kiv_reader* reader, std::pmr::memory_resource* memory)
      : KivContext(kiv_e_object_load, reader), functions(memory), globals(memory) {}
  // An object that no record announced.
  KivObjectLoad(kiv_reader* reader, std::pmr::memory_resource* memory, const char* object_name)
      : KivObjectLoad(reader, memory) {
    name = object_name;
  }

  // Reads the id and takes the object's name from the allocation id of the same number.
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  void object_function_load(std::int32_t number, std::string_view function_name);
  void object_global_load(std::int32_t number, std::string_view function_name);

  // The columns of the object's `objects` row behind run id and pid.
  void columns(csv_row& row) const { row.col(id_of_obj).col(name); }
  std::ostream& dumpinfo(std::ostream& os) const { return dump_columns(*this, os); }
  // The rows of `functions`; globals have none.
  void dump_funcs(std::ostream& os, std::string_view run_columns) const;

  std::uint32_t id_of_obj = 0;
  std::string name;
  function_table functions;
  function_table globals;
};

}  // namespace kiv
