#include "tables/csv_file.h"

#include <cerrno>

#include "tables/run_output.h"
#include "trace/diagnostics.h"

namespace kiv {

csv_file::csv_file(run_output& output, table_id table, const std::string& directory,
                   const std::string& runid, bool first)
    : output_(output),
      table_(describe(table)),
      buffer_(output.files, output.context.faults),
      directory_(directory),
      runid_(runid),
      data_sep_(output.context.data_sep),
      fun_sep_(output.context.fun_sep) {
  open_file(first);
}

void csv_file::open_file(bool create) {
  const csv_file_sequence& sequence = output_.sequence;
  diagnostics& faults = output_.context.faults;
  const std::string path = directory_ + "/" + sequence.get_sequence(table_.id, runid_);
  const bool opened = buffer_.open(path, create);
  const bool switched_off = !opened && errno == EISDIR;
  if (create) output_.script.generate_import(table_, sequence.curr_sequence(table_.id));
  faults.table_opened(path, create);
  if (!opened && !switched_off && !loss_reported_) {
    faults.cannot_write(path);
    loss_reported_ = true;
  }
}

void csv_file::split() {
  buffer_.close();
  output_.sequence.go_on(table_.id);
  open_file(true);
}

}  // namespace kiv
