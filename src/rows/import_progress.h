#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kiv::rows {

// Shows on the error stream how far an import has come: a bar on a terminal, elsewhere a line now
// and then.
class import_progress {
 public:
  explicit import_progress(std::uint64_t total_bytes);
  ~import_progress() { clear(); }
  import_progress(const import_progress&) = delete;
  import_progress& operator=(const import_progress&) = delete;

  // Cheap enough to be called every thousand rows.
  void advance(std::uint64_t bytes, std::uint64_t rows);
  // Takes the bar away before something else is printed.
  void clear();

 private:
  using clock = std::chrono::steady_clock;

  std::uint64_t total_;
  std::uint64_t bytes_ = 0, rows_ = 0;
  bool terminal_;
  bool shown_ = false;
  clock::time_point start_ = clock::now(), next_;
};

}  // namespace kiv::rows
