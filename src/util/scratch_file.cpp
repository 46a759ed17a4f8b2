#include "util/scratch_file.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace kiv {

scratch_file::~scratch_file() {
  if (fd_ >= 0) close(fd_);
}

bool scratch_file::open() {
  if (fd_ >= 0) return true;
  std::error_code none;
  const auto folder = std::filesystem::temp_directory_path(none);
  if (none) return false;
  std::string name = (folder / "kiv.XXXXXX").string();
  fd_ = mkstemp(name.data());
  if (fd_ < 0) return false;
  unlink(name.c_str());
  return true;
}

bool scratch_file::append(std::string_view bytes) {
  if (!open()) return false;
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t written =
        pwrite(fd_, bytes.data() + done, bytes.size() - done, static_cast<off_t>(size_ + done));
    if (written <= 0) return false;
    done += static_cast<std::size_t>(written);
  }
  size_ += done;
  return true;
}

bool scratch_file::read(std::string& into, std::size_t most) {
  into.resize(static_cast<std::size_t>(std::min<std::uint64_t>(most, size_ - read_)));
  std::size_t done = 0;
  while (done < into.size()) {
    const ssize_t got =
        pread(fd_, into.data() + done, into.size() - done, static_cast<off_t>(read_ + done));
    if (got <= 0) return false;
    done += static_cast<std::size_t>(got);
  }
  read_ += done;
  return true;
}

}  // namespace kiv
