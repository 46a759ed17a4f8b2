#include "events/process_events.h"

#include "analysis/kiv_process_db.h"
#include "events/event_fields.h"

namespace kiv {

void KivProcessStart::setelems() {
  readelems(pid, parent);
  readelem(session_name);
  session_name.erase(std::min(session_name.find(' '), session_name.size()));
}

std::uint32_t KivProcessStart::get_main_pid() const {
  return static_cast<std::uint32_t>(reader()->header().pid());
}

void KivProcessEnd::setelems() { readelem(pid); }

void KivProcessSpecialLoad::setelems() {
  readelems(pid, funnr);
  readelem(funcname);
}

void KivSchedule::setelems() { readelems(curr_pid, new_pid); }

KivProcess* KivSchedule::get_cur_proc() const {
  return reader()->processes().get_process(curr_pid);
}

KivProcess* KivSchedule::get_new_proc() const { return reader()->processes().get_process(new_pid); }

}  // namespace kiv
