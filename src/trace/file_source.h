#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

#include "util/memory_pages.h"

namespace kiv {

// Where the data files of a trace come from.
class file_source {
 public:
  struct bytes {
    std::span<const unsigned char> held;  // valid until the next call
    std::int64_t file_size = 0;
  };

  virtual ~file_source() = default;

  // The first bytes of a file, at most so many; nothing when there is no such file.
  virtual std::optional<bytes> read(const std::string& path, std::int64_t most) = 0;
};

// Files of the system, one in memory at a time. Only regular files count.
class disk_files : public file_source {
 public:
  std::optional<bytes> read(const std::string& path, std::int64_t most) override;
  // Gives the memory of the last file back.
  void release() { bytes_ = {}; }

 private:
  memory_pages bytes_;
};

// Files that are bytes in memory, by their paths.
class memory_files : public file_source {
 public:
  void add(const std::string& path, std::span<const unsigned char> content) {
    files_[path] = content;
  }
  std::optional<bytes> read(const std::string& path, std::int64_t most) override;

 private:
  std::map<std::string, std::span<const unsigned char>> files_;
};

}  // namespace kiv
