#include "trace/file_source.h"

#include <algorithm>

#include "util/regular_file.h"

namespace kiv {

std::optional<file_source::bytes> disk_files::read(const std::string& path, std::int64_t most) {
  bytes_ = {};  // never two files at once
  regular_file input(path.c_str());
  if (!input.is_open()) return std::nullopt;
  const auto wanted = static_cast<std::size_t>(std::min(input.size(), most));
  bytes_ = memory_pages(wanted);
  return bytes{{bytes_.data(), input.read(bytes_.data(), wanted)}, input.size()};
}

std::optional<file_source::bytes> memory_files::read(const std::string& path, std::int64_t most) {
  const auto entry = files_.find(path);
  if (entry == files_.end()) return std::nullopt;
  const auto size = static_cast<std::int64_t>(entry->second.size());
  return bytes{entry->second.first(static_cast<std::size_t>(std::min(size, most))), size};
}

}  // namespace kiv
