#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "util/regular_file.h"

namespace kiv {

// Where the data files of a trace come from.
class file_source {
 public:
  virtual ~file_source() = default;

  // Opens a file in place of the one before: how many bytes it has. Nothing when there is no such
  // file; then none is open.
  virtual std::optional<std::int64_t> open(const std::string& path) = 0;
  // The bytes of the open file from an offset on: so many or more, fewer only when the file has no
  // more or cannot be read on. The offset is never before that of the call before, nor behind what
  // that call gave. They are valid until the next call.
  virtual std::span<const unsigned char> bytes(std::size_t from, std::size_t least) = 0;
};

// Files of the system, of which a window is in memory. Only regular files count.
class disk_files : public file_source {
 public:
  // As long as the processor's cache holds it beside the books of a trace, a record costs no way to
  // the memory.
  static constexpr std::size_t usual_window = std::size_t{1} << 19;  // bytes

  std::optional<std::int64_t> open(const std::string& path) override;
  std::span<const unsigned char> bytes(std::size_t from, std::size_t least) override;

 private:
  std::optional<regular_file> file_;
  std::unique_ptr<unsigned char[]> window_;
  std::size_t size_ = 0;   // of the window
  std::size_t start_ = 0;  // the window's offset in the file
  std::size_t held_ = 0;   // bytes of the file in the window
};

// Files that are bytes in memory, by their paths.
class memory_files : public file_source {
 public:
  void add(const std::string& path, std::span<const unsigned char> content) {
    files_[path] = content;
  }
  std::optional<std::int64_t> open(const std::string& path) override;
  std::span<const unsigned char> bytes(std::size_t from, std::size_t /*least*/) override {
    return open_.subspan(from);
  }

 private:
  std::map<std::string, std::span<const unsigned char>> files_;
  std::span<const unsigned char> open_;
};

}  // namespace kiv
