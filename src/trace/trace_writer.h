#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "trace/header_text.h"
#include "trace/record_encoder.h"
#include "util/moment.h"

namespace kiv {

// Writes a trace as a stream: a header and data files of a bounded size. The header says from the
// start whose trace it is, and names the open data file with the largest size that readers take, so
// that a trace whose writer died can be read as it is; it is closed only by close(). Whenever the
// process dies, a whole header stands there.
//
// The first failure of the system stays: writes after it do nothing, and error() says it.
class trace_writer {
 public:
  struct options {
    std::string directory;           // of the run; made when missing, and what is above it
    std::string recorded_directory;  // what the header calls it; as above when empty
    std::string base_name = "kiv";
    bool little_endian = true;
    int address_width = 8;                              // 4 or 8
    std::size_t max_file_size = std::size_t{16} << 20;  // bytes; a larger record has its own file
    std::size_t buffer_size = std::size_t{64} << 10;    // bytes that wait in memory at most
    bool replace = true;  // a trace of the same names; else it makes open() fail
  };

  trace_writer(const trace_identity& identity, options chosen);
  // Writes what is buffered. A trace that was not closed stays open, as one of a killed process.
  ~trace_writer();
  trace_writer(const trace_writer&) = delete;
  trace_writer& operator=(const trace_writer&) = delete;

  // Makes the header and the first data file; nothing of them stays when it fails. A relative
  // directory is that of the working directory of this moment.
  bool open();

  // Takes no memory, but where a data file becomes full.
  template <class Event>
  void write(const Event& event) {
    const std::size_t record = encoder_.bytes().size();
    encoder_.write(event);
    if (encoder_.bytes().size() >= room_) make_room(record);
  }

  // Everything written so far gets into the files.
  bool flush();
  // The process ended then. No write may follow.
  bool close(moment end);

  // What the system refused, with the file's name; empty when nothing.
  const std::string& error() const { return error_; }
  std::string header_path() const;

 private:
  bool make_directory();
  bool claim_header();
  bool open_data_file();
  bool end_data_file();
  bool write_header();
  // `record`: where the one begins for which there is no room.
  void make_room(std::size_t record);
  // Puts so many of the buffered bytes into the data file.
  bool write_out(std::size_t count);
  void measure_room();
  bool fail(const std::string& path);

  const options options_;
  header_text header_;
  const std::string pid_;
  record_encoder encoder_;
  std::string directory_;  // absolute
  std::string data_path_;
  std::size_t data_size_ = 0;  // of the open data file
  std::size_t room_ = 0;       // bytes in the buffer from which on something is to be done
  int data_fd_ = -1;
  std::string error_;
};

}  // namespace kiv
