#include "kiv/dirhandler.h"

#include <sys/stat.h>

#include <string_view>

namespace kiv {

dirhandler::dirhandler(const char* path, const char* pattern)
    : directory_(opendir(path)), pattern_(pattern) {}

void dirhandler::read_dir() {
  if (!opened()) return;
  while (const dirent* item = readdir(directory_.get())) {
    const std::string_view name = item->d_name;
    if (name.find(pattern_) == std::string_view::npos) continue;
    struct stat info {};
    if (fstatat(dirfd(directory_.get()), item->d_name, &info, 0) != 0) continue;
    if (S_ISREG(info.st_mode)) names_.emplace_back(name);
  }
}

}  // namespace kiv
