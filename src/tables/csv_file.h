#pragma once

#include <cstdint>
#include <string>

#include "tables/csv_filebuf.h"
#include "tables/csv_tables.h"

namespace kiv {

struct run_output;

// One CSV table of one trace: an open file, continued in further files when a size limit is set.
// A file that cannot be opened swallows its rows; the run goes on. The first one of a table is
// reported, but for a directory in the file's place: that is how one says that the table is not
// wanted.
class csv_file {
 public:
  // Opens the table's current file at once. The first trace of a run creates it and announces it
  // to the script, later ones append. `output` must outlive the object.
  csv_file(run_output& output, table_id table, const std::string& directory,
           const std::string& runid, bool first);
  csv_file(const csv_file&) = delete;
  csv_file& operator=(const csv_file&) = delete;

  // Where the next row goes. With the size check on, a file that has reached the limit is closed
  // first and the next one begun, so ask anew for every row.
  csv_filebuf& get_stream() {
    if (size_check_ && buffer_.position() >= size_limit_) split();
    return buffer_;
  }
  char data_sep() const { return data_sep_; }
  char fun_sep() const { return fun_sep_; }

  // From now on a file that holds so many bytes is continued in the next.
  void split_at(std::int64_t limit) {
    size_limit_ = limit;
    size_check_ = true;
  }

 private:
  // `create` truncates the file and announces it.
  void open_file(bool create);
  void split();

  run_output& output_;
  const csv_table& table_;
  csv_filebuf buffer_;
  const std::string directory_;
  const std::string runid_;
  const char data_sep_;
  const char fun_sep_;
  bool size_check_ = false;
  bool loss_reported_ = false;
  std::int64_t size_limit_ = 0;
};

}  // namespace kiv
