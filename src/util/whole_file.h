#pragma once

#include <fstream>
#include <ostream>
#include <string>

namespace kiv {

// A file that stands under its name whole or not at all: it is written beside and then takes the
// name, and what stood there before stays until then. A link stays one. What is no regular file,
// such as a device or a FIFO, is written to as it is.
class whole_file {
 public:
  whole_file() = default;
  ~whole_file();  // removes what was not committed
  whole_file(const whole_file&) = delete;
  whole_file& operator=(const whole_file&) = delete;

  // False, with `error` set, when the file cannot be made. To be called once.
  bool open(const std::string& path, std::string& error);
  std::ostream& stream() { return stream_; }
  // Gives the file its name. False, with `error` set, when something could not be written.
  bool commit(std::string& error);

 private:
  std::string path_;    // links followed
  std::string beside_;  // where it is written; empty: at its path, or done
  std::ofstream stream_;
  int fd_ = -1;  // of the file beside
};

}  // namespace kiv
