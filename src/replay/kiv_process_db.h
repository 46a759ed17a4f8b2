#pragma once

#include <cstdint>
#include <utility>

#include "replay/kiv_process.h"
#include "util/number_table.h"
#include "util/object_pool.h"

namespace kiv {

class KivMalid;

// The book of processes: pid -> process started last under that pid, ended ones included. The
// default process stands under pid 0 until a process with that pid starts.
class KivProcess_db {
 public:
  // `main_pid`: of the trace. The default process starts at `start`.
  KivProcess_db(std::uint32_t main_pid, const moment& start, KivReserveId_db& ids,
                diagnostics& faults);

  // The process that the event starts. An earlier one of the same pid is dropped, and with it its
  // arcs, symbols and row.
  KivProcess& add_process(const KivProcessStart& event, const KivProcess::end_point& start);

  // The living process of that pid. An unknown pid has the default process, an ended one the
  // process under pid 0. Never null.
  KivProcess* get_process(std::uint32_t pid) const;

  // Note the allocation id that names a process in its reservation text; for a process that is not
  // in the book, that is said.
  void link_mal_id(const KivMalid& id);
  void link_xml_id(const KivMalid& id);

  // Closes the times of the processes that still live at the end of the trace.
  void check_end_time(const KivProcess::end_point& end);
  // Calls `action` with each process in ascending order of pid, the default process included while
  // none was started under pid 0.
  template <class Action>
  void for_each_ascending(Action action) const {
    if (started_.find(0) == nullptr) action(std::as_const(default_process_));
    started_.for_each_ascending(action);
  }

 private:
  KivProcess* find_process(std::uint32_t pid) const;
  KivProcess* find_named_process(const KivMalid& id) const;

  const std::uint32_t main_pid_;
  KivReserveId_db& ids_;
  diagnostics& diagnostics_;
  mutable KivProcess default_process_;
  object_pool<KivProcess> pool_;
  number_table<object_pool<KivProcess>::pointer> started_;
};

}  // namespace kiv
