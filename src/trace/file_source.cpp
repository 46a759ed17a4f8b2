#include "trace/file_source.h"

#include <algorithm>

#include "util/regular_file.h"

namespace kiv {
namespace {

// For a file that is a little longer than the one before.
constexpr std::size_t room_for_longer_files = std::size_t{1} << 20;

}  // namespace

std::optional<file_source::bytes> disk_files::read(const std::string& path, std::int64_t most) {
  regular_file input(path.c_str());
  if (!input.is_open()) {
    release();
    return std::nullopt;
  }
  const auto wanted = static_cast<std::size_t>(std::min(input.size(), most));
  // Files of one size take the same pages: new ones cost more than reading into them. Never two
  // files at once.
  if (wanted > bytes_.size() || wanted < bytes_.size() / 2) {
    release();
    bytes_ = memory_pages(wanted, room_for_longer_files);
  }
  return bytes{{bytes_.data(), input.read(bytes_.data(), wanted)}, input.size()};
}

std::optional<file_source::bytes> memory_files::read(const std::string& path, std::int64_t most) {
  const auto entry = files_.find(path);
  if (entry == files_.end()) return std::nullopt;
  const auto size = static_cast<std::int64_t>(entry->second.size());
  return bytes{entry->second.first(static_cast<std::size_t>(std::min(size, most))), size};
}

}  // namespace kiv
