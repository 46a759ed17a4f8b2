#pragma once

#include <cstdint>
#include <string_view>
#include <tuple>

#include "trace/kiv_type.h"

namespace kiv {

struct KivProcessStart {
  static constexpr kiv_type type = kiv_e_process_start;
  auto numbers() { return std::tie(pid, parent); }
  auto& text() { return session_name; }

  // What the process is known by: the name up to its first blank.
  std::string_view short_name() const { return session_name.substr(0, session_name.find(' ')); }

  std::uint32_t pid = 0;
  std::uint32_t parent = 0;
  std::string_view session_name;
};

struct KivProcessEnd {
  static constexpr kiv_type type = kiv_e_process_end;
  auto numbers() { return std::tie(pid); }

  std::uint32_t pid = 0;
};

// Names a special code location of a process; its number is zero or negative.
struct KivProcessSpecialLoad {
  static constexpr kiv_type type = kiv_e_process_special_load;
  auto numbers() { return std::tie(pid, funnr); }
  auto& text() { return funcname; }

  std::uint32_t pid = 0;
  std::int32_t funnr = 0;
  std::string_view funcname;
};

struct KivSchedule {
  static constexpr kiv_type type = kiv_e_schedule;
  auto numbers() { return std::tie(curr_pid, new_pid); }

  std::uint32_t curr_pid = 0;
  std::uint32_t new_pid = 0;
};

}  // namespace kiv
