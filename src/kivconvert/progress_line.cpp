#include "kivconvert/progress_line.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "util/printable.h"

namespace kiv::convert {

progress_line::progress_line(const std::string& path)
    : path_(printable(path)),
      on_terminal_(isatty(STDERR_FILENO) != 0),
      next_(clock::now() + std::chrono::seconds(1)) {
  std::error_code unknown;
  const auto size = std::filesystem::file_size(path, unknown);
  if (!unknown) size_ = size;
}

progress_line::~progress_line() {
  if (shown_) std::fputs("\r\033[K", stderr);
}

void progress_line::show(std::uint64_t bytes_read) {
  if (!on_terminal_ || size_ == 0 || clock::now() < next_) return;
  next_ = clock::now() + std::chrono::milliseconds(200);
  shown_ = true;
  std::fprintf(stderr, "\r%s: %3u %%", path_.c_str(),
               static_cast<unsigned>(std::min<std::uint64_t>(bytes_read * 100 / size_, 100)));
}

}  // namespace kiv::convert
