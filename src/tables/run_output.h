#pragma once

#include "replay/run_context.h"
#include "tables/csv_file_sequence.h"
#include "tables/csv_filebuf.h"
#include "tables/sql_script.h"

namespace kiv {

// What the traces of one directory, or a single trace, share for their output.
struct run_output {
  run_output(run_context& with_context, open_files& all_files)
      : context(with_context), files(all_files), script(all_files, with_context.faults) {}

  run_context& context;
  open_files& files;
  csv_file_sequence sequence;
  sql_script script;
};

}  // namespace kiv
