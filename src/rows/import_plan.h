#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tables/csv_tables.h"

namespace kiv::rows {

struct import_file {
  const csv_table* table;
  std::string number;
  std::string path;
  std::uint64_t size = 0;  // bytes
};

struct run_plan {
  std::string run_id;  // as file names spell it
  std::string source;  // script or directory it was found in
  std::vector<import_file> files;
};

struct import_plan {
  std::vector<run_plan> runs;      // each with a file at least
  std::vector<std::string> notes;  // for the user: files that are left out, and why

  std::uint64_t bytes() const;
};

// Finds out what to import. A script stands for the files it announces. A directory stands for all
// its scripts, and for the files of runs that have no script of their own: those of later traces
// of one analysis whose run id differs from the first one's. False, with `error` set, when there
// is nothing to import, a script cannot be read, a file that it announces is not there, or a source
// was named before, in whatever way.
bool make_import_plan(const std::vector<std::string>& sources, import_plan& plan,
                      std::string& error);

// The files of a run by its id, whatever bytes that has; null when the plan has none.
const run_plan* find_run(const import_plan& plan, std::string_view run_id);

}  // namespace kiv::rows
