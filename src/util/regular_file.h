#pragma once

#include <cstddef>
#include <cstdint>

namespace kiv {

// A file opened for reading. Only regular files open (links are followed): a directory, FIFO or
// device named by a trace counts as not openable, so that it can neither block nor feed the run.
class regular_file {
 public:
  explicit regular_file(const char* path);
  ~regular_file();
  regular_file(const regular_file&) = delete;
  regular_file& operator=(const regular_file&) = delete;

  bool is_open() const { return fd_ >= 0; }
  // Bytes in the file when it was opened; 0 when it is not open.
  std::int64_t size() const { return size_; }
  // Reads up to `count` bytes from the current position. Fewer come back only at the end of the
  // file or after a read error.
  std::size_t read(void* into, std::size_t count);
  void close();

 private:
  int fd_ = -1;
  std::int64_t size_ = 0;
};

}  // namespace kiv
