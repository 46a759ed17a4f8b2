#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kiv::convert {

// How far a file has been read, on one line of a terminal's error stream; nothing elsewhere, nor
// within the first second.
class progress_line {
 public:
  explicit progress_line(const std::string& path);
  ~progress_line();
  progress_line(const progress_line&) = delete;
  progress_line& operator=(const progress_line&) = delete;

  void show(std::uint64_t bytes_read);

 private:
  using clock = std::chrono::steady_clock;

  std::string path_;
  std::uint64_t size_ = 0;
  bool on_terminal_;
  bool shown_ = false;
  clock::time_point next_;
};

}  // namespace kiv::convert
