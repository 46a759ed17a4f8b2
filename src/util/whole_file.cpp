#include "util/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace kiv {
namespace {

bool fail(std::string& error, const char* otherwise) {
  error = errno != 0 ? std::strerror(errno) : otherwise;
  return false;
}

// The path without links; as it is when nothing stands there.
std::string resolved(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                         &std::free);
  return real ? real.get() : path;
}

// The permissions that a new file gets.
mode_t usual_mode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

whole_file::~whole_file() {
  if (fd_ >= 0) ::close(fd_);
  if (!beside_.empty()) unlink(beside_.c_str());
}

bool whole_file::open(const std::string& path, std::string& error) {
  path_ = resolved(path);
  errno = 0;
  struct stat info {};
  const bool exists = stat(path_.c_str(), &info) == 0;
  if (exists && !S_ISREG(info.st_mode)) {
    stream_.open(path_, std::ios::binary);
    return stream_.is_open() || fail(error, "cannot be opened");
  }
  if (exists && access(path_.c_str(), W_OK) != 0) return fail(error, "cannot be written");
  std::string beside = path_ + ".XXXXXX";
  fd_ = mkostemp(beside.data(), O_CLOEXEC);
  if (fd_ < 0) return fail(error, "cannot be made");
  beside_ = beside;
  if (fchmod(fd_, exists ? info.st_mode & 07777 : usual_mode()) != 0) {
    return fail(error, "cannot be made");
  }
  stream_.open(beside_, std::ios::binary);
  return stream_.is_open() || fail(error, "cannot be made");
}

bool whole_file::commit(std::string& error) {
  constexpr const char* not_whole = "could not be written whole";
  // Of a write that failed earlier the reason still stands: nothing was called since that sets it.
  const bool good = stream_.good();
  if (good) errno = 0;
  stream_.close();
  if (!good || !stream_) return fail(error, not_whole);
  if (fd_ < 0) return true;
  if (fsync(fd_) != 0 || std::rename(beside_.c_str(), path_.c_str()) != 0) {
    return fail(error, not_whole);
  }
  beside_.clear();
  return true;
}

}  // namespace kiv
