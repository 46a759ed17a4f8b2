#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "trace/record_cursor.h"

namespace kiv {

class diagnostics;
class file_source;
class kivfile;
class record_layout;

// The data files of a trace, read one after another in the header's order: of each as many bytes as
// it really holds, at most the size recorded for it. A window of the file is in memory.
class data_files {
 public:
  // `list` and `layout` are the header's; all but `layout` must outlive this.
  data_files(const std::vector<std::unique_ptr<kivfile>>& list, bool little_endian,
             const record_layout& layout, file_source& source, diagnostics& faults);

  // Opens the current file. False when the list is at its end, without a message, or
  // when the file cannot be opened.
  bool rd_open();
  void rd_close();

  // True when every file is read or the next one cannot be opened. Else the next record can be read
  // as far as the file holds it; texts of the one before are no longer valid. To be asked before
  // each record.
  bool eof() { return cursor_.needs_bytes() && !go_on(); }

  // The path of the current file, empty when the list is at its end.
  std::string current_path() const;

  record_cursor& cursor() { return cursor_; }

 private:
  // Has the cursor at a record: with more bytes of the file, or in the next one that holds any.
  // False when there is no further file that can be read.
  bool go_on();
  void read_on();
  const kivfile* current() const;

  const std::vector<std::unique_ptr<kivfile>>& list_;
  const bool little_endian_;
  const std::size_t reach_;  // how far behind its start a record may be looked at, in bytes
  file_source& source_;
  diagnostics& diagnostics_;
  std::size_t next_ = 0;  // place of the current file in the list
  record_cursor cursor_;
};

}  // namespace kiv
