#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "analysis/kiv_process.h"
#include "memory/number_table.h"
#include "memory/object_pool.h"

namespace kiv {

class KivReserveId;

// The book of processes: pid -> process started last under that pid, ended ones included. The
// default process stands under pid 0 until a process with that pid starts.
class KivProcess_db {
 public:
  // Owns the default process too.
  explicit KivProcess_db(std::unique_ptr<KivProcess> default_process);

  using process_ptr = object_pool<KivProcess>::pointer;
  // The process that the event starts, in no book yet.
  process_ptr make_process(kiv_reader* reader, const KivProcessStart& event) {
    return pool_.make(reader, event);
  }
  // An earlier process of the same pid is dropped, and with it its arcs, symbols and row.
  void add_process(process_ptr process);

  // The living process of that pid. An unknown pid has the default process, an ended one the
  // process under pid 0. Never null.
  KivProcess* get_process(std::uint32_t pid) const;

  // Note the allocation id that names a process in its reservation text; a process that is not in
  // the book is reported on the standard output.
  void link_mal_id(const KivReserveId& id);
  void link_xml_id(const KivReserveId& id);

  // Closes the times of the processes that still live at the end of the trace.
  void check_end_time(const moment_text& time, std::uint64_t record);
  // One row of `process` per process in ascending order of pid.
  void dump_db(std::ostream& os, std::string_view runid) const;

 private:
  KivProcess* find_process(std::uint32_t pid) const;
  KivProcess* find_named_process(const KivReserveId& id) const;

  const std::unique_ptr<KivProcess> default_process_;
  object_pool<KivProcess> pool_;
  number_table<process_ptr> started_;
};

}  // namespace kiv
