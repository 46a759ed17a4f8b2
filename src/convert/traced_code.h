#pragma once

#include <cstdint>
#include <vector>

#include "convert/recorded_code.h"
#include "convert/recorded_stacks.h"
#include "trace/code_events.h"
#include "trace/trace_writer.h"

namespace kiv::convert {

// Puts a recording's code into a trace: functions are announced at its start, since which ones an
// object has is settled when it is first used; the process's calls follow the stacks.
class traced_code {
 public:
  traced_code(const recorded_code& code, const recorded_stacks& stacks, std::uint32_t pid,
              trace_writer& trace)
      : code_(code), stacks_(stacks), pid_(pid), trace_(trace) {}

  // Leaves the functions that the current path does not share with the other one, and enters what
  // this one has more.
  void go_to(std::uint32_t path) {
    if (path != current_) change_path(path);
  }

  // Announces all objects, each with an allocation id of its number, and all functions.
  void announce();
  // Announces the location, when it is used for the first time; 0 is none.
  void use_location(std::uint32_t location);

 private:
  void change_path(std::uint32_t path);
  void announce_object(std::uint32_t object);
  void find_calls();

  const recorded_code& code_;
  const recorded_stacks& stacks_;
  const std::uint32_t pid_;
  trace_writer& trace_;
  std::vector<KivFlowIn> calls_;  // by path: the one that ends in it
  std::uint32_t current_ = 0;
  std::vector<std::uint32_t> to_enter_;
  std::vector<bool> location_used_;
};

}  // namespace kiv::convert
