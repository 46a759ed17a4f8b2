#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "trace/header_text.h"
#include "trace/record_encoder.h"
#include "util/moment.h"

namespace kiv {

// Writes a trace as a stream: a header and data files of a bounded size. The header names the open
// data file from the start, with more bytes than any file has, so that a trace whose writer died
// can be read as it is; it is closed only by close().
//
// The first failure of the system stays: writes after it do nothing, and error() says it.
class trace_writer {
 public:
  struct options {
    std::string directory;           // made when missing, and what is above it
    std::string recorded_directory;  // what the header calls it; the directory itself when empty
    std::string base_name = "kiv";
    bool little_endian = true;
    int address_width = 8;                              // 4 or 8
    std::size_t max_file_size = std::size_t{16} << 20;  // bytes; what is buffered may exceed it
  };

  trace_writer(const trace_identity& identity, options chosen);
  // Writes what is buffered. A trace that was not closed stays open, as one of a killed process.
  ~trace_writer();
  trace_writer(const trace_writer&) = delete;
  trace_writer& operator=(const trace_writer&) = delete;

  // Makes the header and the first data file; files of the same names are replaced.
  bool open();

  template <class Event>
  void write(const Event& event) {
    encoder_.write(event);
    if (encoder_.bytes().size() >= buffer_size) write_buffer();
  }

  // Everything written so far gets into the files.
  bool flush();
  // The process ended then. No write may follow.
  bool close(moment end);

  // What the system refused, with the file's name; empty when nothing.
  const std::string& error() const { return error_; }
  std::string header_path() const;

 private:
  static constexpr std::size_t buffer_size = std::size_t{64} << 10;

  bool open_data_file();
  bool write_buffer();
  bool write_header();
  bool end_data_file();
  bool fail(const std::string& path);

  const options options_;
  header_text header_;
  std::string pid_;
  record_encoder encoder_;
  std::string header_written_;
  std::string data_path_;
  std::size_t data_size_ = 0;  // of the open data file
  int header_fd_ = -1;
  int data_fd_ = -1;
  std::string error_;
};

}  // namespace kiv
