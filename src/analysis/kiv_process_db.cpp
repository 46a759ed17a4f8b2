#include "analysis/kiv_process_db.h"

#include <iostream>
#include <utility>

#include "memory/kiv_reserve_id.h"
#include "memory/reserve_type.h"
#include "output/csv_row.h"

namespace kiv {

KivProcess_db::KivProcess_db(std::unique_ptr<KivProcess> default_process)
    : default_process_(std::move(default_process)) {}

void KivProcess_db::add_process(process_ptr process) {
  const std::uint32_t pid = process->pid();
  started_.assign(pid, std::move(process));
}

KivProcess* KivProcess_db::find_process(std::uint32_t pid) const {
  KivProcess* process = started_.find(pid);
  return process == nullptr && pid == 0 ? default_process_.get() : process;
}

KivProcess* KivProcess_db::get_process(std::uint32_t pid) const {
  KivProcess* process = find_process(pid);
  if (process == nullptr) return default_process_.get();
  return process->alive() ? process : find_process(0);
}

KivProcess* KivProcess_db::find_named_process(const KivReserveId& id) const {
  const std::uint32_t pid = process_of_reserve_type(id.reserve_type);
  KivProcess* process = find_process(pid);
  if (process == nullptr) {
    std::cout << "cannot happen: process id " << pid << " is not on KivProcess_db \n";
  }
  return process;
}

void KivProcess_db::link_mal_id(const KivReserveId& id) {
  if (KivProcess* process = find_named_process(id)) process->set_mal_id(id.id);
}

void KivProcess_db::link_xml_id(const KivReserveId& id) {
  if (KivProcess* process = find_named_process(id)) process->set_xml_id(id.id);
}

void KivProcess_db::check_end_time(const moment_text& time, std::uint64_t record) {
  const auto close = [&](KivProcess& process) {
    if (process.alive()) process.set_end(time, record);
  };
  if (started_.find(0) == nullptr) close(*default_process_);
  started_.for_each(close);
}

void KivProcess_db::dump_db(std::ostream& os, std::string_view runid) const {
  const auto write = [&](const KivProcess& process) {
    csv_row row(os);
    row.col(runid);
    process.columns(row);
    row.end_line();
  };
  if (started_.find(0) == nullptr) write(*default_process_);
  started_.for_each_ascending(write);
}

}  // namespace kiv
