#pragma once

#include <dirent.h>

#include <memory>
#include <string>
#include <vector>

namespace kiv {

// Lists the regular files of a directory (links are followed) whose name contains a pattern.
class dirhandler {
 public:
  dirhandler(const char* path, const char* pattern);

  bool opened() const { return directory_ != nullptr; }
  // Fills names() in the order of the system's listing; leaves it empty when the directory could
  // not be opened.
  void read_dir();
  const std::vector<std::string>& names() const { return names_; }

 private:
  struct close_directory {
    void operator()(DIR* directory) const { closedir(directory); }
  };
  std::unique_ptr<DIR, close_directory> directory_;
  std::string pattern_;
  std::vector<std::string> names_;
};

}  // namespace kiv
