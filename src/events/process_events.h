#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "events/kiv_event.h"

namespace kiv {

class KivProcess;

class KivProcessStart final : public KivContext {
 public:
  explicit KivProcessStart(kiv_reader* reader) : KivContext(kiv_e_process_start, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;
  std::uint32_t get_main_pid() const;  // of the trace's header

  std::uint32_t pid = 0;
  std::uint32_t parent = 0;
  std::string session_name;  // cut at its first blank
};

class KivProcessEnd final : public KivContext {
 public:
  explicit KivProcessEnd(kiv_reader* reader) : KivContext(kiv_e_process_end, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t pid = 0;
};

// Names a special code location of a process; its number is zero or negative.
class KivProcessSpecialLoad final : public KivContext {
 public:
  explicit KivProcessSpecialLoad(kiv_reader* reader)
      : KivContext(kiv_e_process_special_load, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t pid = 0;
  std::int32_t funnr = 0;
  std::string funcname;
};

class KivSchedule final : public KivChangeContext {
 public:
  explicit KivSchedule(kiv_reader* reader) : KivChangeContext(kiv_e_schedule, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;
  KivProcess* get_cur_proc() const;
  KivProcess* get_new_proc() const;

  std::uint32_t curr_pid = 0;
  std::uint32_t new_pid = 0;
};

}  // namespace kiv
