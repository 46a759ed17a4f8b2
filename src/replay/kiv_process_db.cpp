#include "replay/kiv_process_db.h"

#include "replay/kiv_malid.h"
#include "replay/reserve_type.h"
#include "trace/diagnostics.h"

namespace kiv {

KivProcess_db::KivProcess_db(std::uint32_t main_pid, const moment& start, KivReserveId_db& ids,
                             diagnostics& faults)
    : main_pid_(main_pid), ids_(ids), diagnostics_(faults), default_process_(ids, faults) {
  default_process_.set_start({start, 0});
}

KivProcess& KivProcess_db::add_process(const KivProcessStart& event,
                                       const KivProcess::end_point& start) {
  auto process = pool_.make(event, main_pid_, ids_, diagnostics_);
  process->set_start(start);
  return started_.assign(event.pid, std::move(process));
}

KivProcess* KivProcess_db::find_process(std::uint32_t pid) const {
  KivProcess* process = started_.find(pid);
  return process == nullptr && pid == 0 ? &default_process_ : process;
}

KivProcess* KivProcess_db::get_process(std::uint32_t pid) const {
  KivProcess* process = find_process(pid);
  if (process == nullptr) return &default_process_;
  return process->alive() ? process : find_process(0);
}

KivProcess* KivProcess_db::find_named_process(const KivMalid& id) const {
  const std::uint32_t pid = process_of_reserve_type(id.reserve_type);
  KivProcess* process = find_process(pid);
  if (process == nullptr) diagnostics_.reserved_process_missing(pid);
  return process;
}

void KivProcess_db::link_mal_id(const KivMalid& id) {
  if (KivProcess* process = find_named_process(id)) process->set_mal_id(id.id);
}

void KivProcess_db::link_xml_id(const KivMalid& id) {
  if (KivProcess* process = find_named_process(id)) process->set_xml_id(id.id);
}

void KivProcess_db::check_end_time(const KivProcess::end_point& end) {
  const auto close = [&](KivProcess& process) {
    if (process.alive()) process.set_end(end);
  };
  if (started_.find(0) == nullptr) close(default_process_);
  started_.for_each(close);
}

}  // namespace kiv
