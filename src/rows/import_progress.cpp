#include "rows/import_progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>

namespace kiv::rows {
namespace {

constexpr int bar_width = 30;

}  // namespace

import_progress::import_progress(std::uint64_t total_bytes)
    : total_(total_bytes), terminal_(isatty(STDERR_FILENO) != 0) {
  next_ = start_ + (terminal_ ? std::chrono::milliseconds(200) : std::chrono::seconds(5));
}

void import_progress::advance(std::uint64_t bytes, std::uint64_t rows) {
  bytes_ += bytes;
  rows_ += rows;
  const auto now = clock::now();
  if (now < next_) return;
  next_ = now + (terminal_ ? std::chrono::milliseconds(100) : std::chrono::seconds(5));
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double part =
      total_ ? std::min(1.0, static_cast<double>(bytes_) / static_cast<double>(total_)) : 1;
  const double left = part > 0 ? seconds / part - seconds : 0;
  const std::string rate = fmt::format("{:.0f}", static_cast<double>(rows_) / seconds);
  if (terminal_) {
    const int filled = static_cast<int>(part * bar_width);
    std::fprintf(stderr, "\r[%.*s%*s] %3.0f%%  %s rows/s  %.0f s left \x1b[K", filled,
                 "##############################", bar_width - filled, "", part * 100, rate.c_str(),
                 left);
    shown_ = true;
  } else {
    std::fprintf(stderr, "%.0f%%, %s rows, %s rows/s, %.0f s left\n", part * 100,
                 std::to_string(rows_).c_str(), rate.c_str(), left);
  }
  std::fflush(stderr);
}

void import_progress::clear() {
  if (!shown_) return;
  std::fputs("\r\x1b[K", stderr);
  shown_ = false;
}

}  // namespace kiv::rows
