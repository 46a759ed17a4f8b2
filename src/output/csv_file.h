#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "output/csv_filebuf.h"

namespace kiv {

class csv_file_sequence;
class sql_script;

// One CSV table of one trace: an open file, continued in further files when a size limit is set.
// A file that cannot be opened swallows its rows; the run goes on. The first one of a table is
// reported on the error stream, but for a directory in the file's place: that is how one says that
// the table is not wanted.
class csv_file {
 public:
  // Opens the table's current file at once. The first trace of a run creates it and announces it
  // to the script, later ones append. `seq` and `script` must outlive the object.
  csv_file(csv_file_sequence* seq, sql_script* script, const char* name,
           const std::string& directory, const std::string& runid, bool first);
  csv_file(const csv_file&) = delete;
  csv_file& operator=(const csv_file&) = delete;

  // Opens the file with the current (or the next) number; `create` truncates and announces it.
  // False when the file could not be opened.
  bool open_file(bool create, bool next);

  // The stream for the next row. With the size check on, a file that has reached the limit is
  // closed first and the next one begun, so ask anew for every row.
  std::ostream& get_stream() {
    if (size_check_ && buffer_.position() >= size_limit_) split();
    return stream_;
  }

  // What get_stream() writes to.
  csv_filebuf& buffer() { return buffer_; }

  void set_max(std::int64_t limit) { size_limit_ = limit; }  // bytes
  void add_check(bool on) { size_check_ = on; }
  const std::string& get_filename() const { return file_name_; }  // without the directory
  std::string generate_file_name(bool next);
  void close_file();

 private:
  void split();

  csv_file_sequence* sequence_;
  sql_script* script_;
  csv_filebuf buffer_;
  std::ostream stream_;
  std::string file_name_;
  std::string directory_;
  std::string runid_;
  std::string name_;
  bool size_check_ = false;
  bool loss_reported_ = false;
  std::int64_t size_limit_ = 0x40000000;
};

}  // namespace kiv
