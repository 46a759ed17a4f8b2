#include "util/whole_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace kiv {
namespace {

namespace fs = std::filesystem;

bool write_to(const std::string& path, const std::function<void(std::ostream&)>& write,
              std::string& error) {
  errno = 0;
  std::ofstream out(path, std::ios::binary);
  if (out) write(out);
  out.close();
  if (out) return true;
  error = errno != 0 ? std::strerror(errno) : "cannot be written";
  return false;
}

}  // namespace

bool write_whole_file(const std::string& path, const std::function<void(std::ostream&)>& write,
                      std::string& error) {
  struct stat info {};
  const bool exists = stat(path.c_str(), &info) == 0;
  if (exists && !S_ISREG(info.st_mode)) return write_to(path, write, error);
  std::error_code failure;
  const fs::path target = exists ? fs::canonical(path, failure) : fs::path(path);
  if (exists && access(path.c_str(), W_OK) != 0) {
    error = std::strerror(errno);
    return false;
  }
  const std::string beside =
      (target.parent_path() / (".kivdb-" + std::to_string(getpid()) + ".part")).string();
  bool done = write_to(beside, write, error);
  if (done && exists) done = chmod(beside.c_str(), info.st_mode & 07777) == 0;
  if (done) done = std::rename(beside.c_str(), target.c_str()) == 0;
  if (!done) {
    if (error.empty()) error = std::strerror(errno);
    unlink(beside.c_str());
  }
  return done;
}

}  // namespace kiv
