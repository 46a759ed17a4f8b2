#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "trace/record_cursor.h"

namespace kiv {

class diagnostics;
class file_source;
class kivfile;

// The data files of a trace, read one after another in the header's order. One file's bytes are in
// memory at a time, as many as the file really holds, at most the size recorded for it.
class data_files {
 public:
  // `list` is the header's; all three must outlive this.
  data_files(const std::vector<std::unique_ptr<kivfile>>& list, bool little_endian,
             file_source& source, diagnostics& faults)
      : list_(list), little_endian_(little_endian), source_(source), diagnostics_(faults) {}

  // Opens the current file and reads it. False when the list is at its end, without a message, or
  // when the file cannot be opened.
  bool rd_open();
  void rd_close();

  // True when every file is read or the next one cannot be opened. Goes on to the next file that
  // holds bytes when the current one is at its end.
  bool eof() { return cursor_.at_end() && !go_to_next_file(); }

  // The path of the current file, empty when the list is at its end.
  std::string current_path() const;

  record_cursor& cursor() { return cursor_; }

 private:
  // False when there is no further file that can be read.
  bool go_to_next_file();
  const kivfile* current() const;

  const std::vector<std::unique_ptr<kivfile>>& list_;
  const bool little_endian_;
  file_source& source_;
  diagnostics& diagnostics_;
  std::size_t next_ = 0;  // place of the current file in the list
  record_cursor cursor_;
};

}  // namespace kiv
