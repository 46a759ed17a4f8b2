#include "util/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace kiv {

regular_file::regular_file(const char* path) {
  // Opening some devices has side effects, so ask before; and again on what was opened.
  struct stat info {};
  if (stat(path, &info) != 0 || !S_ISREG(info.st_mode)) return;
  fd_ = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd_ < 0) return;
  if (fstat(fd_, &info) != 0 || !S_ISREG(info.st_mode)) {
    close();
    return;
  }
  size_ = info.st_size;
}

regular_file::~regular_file() { close(); }

std::size_t regular_file::read(void* into, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got = ::read(fd_, static_cast<char*>(into) + done, count - done);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

void regular_file::close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  size_ = 0;
}

}  // namespace kiv
