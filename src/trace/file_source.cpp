#include "trace/file_source.h"

#include <algorithm>
#include <cstring>

namespace kiv {

std::optional<std::int64_t> disk_files::open(const std::string& path) {
  start_ = held_ = 0;
  file_.emplace(path.c_str());
  if (!file_->is_open()) {
    file_.reset();
    return std::nullopt;
  }
  return file_->size();
}

std::span<const unsigned char> disk_files::bytes(std::size_t from, std::size_t least) {
  const std::size_t passed = from - start_;
  const std::size_t kept = held_ - passed;
  const std::size_t wanted = std::max(least, usual_window);
  if (wanted > size_) {
    auto larger = std::make_unique_for_overwrite<unsigned char[]>(wanted);
    std::copy_n(window_.get() + passed, kept, larger.get());
    window_ = std::move(larger);
    size_ = wanted;
  } else if (passed != 0) {
    std::memmove(window_.get(), window_.get() + passed, kept);
  }
  start_ = from;
  held_ = kept + file_->read(window_.get() + kept, size_ - kept);
  return {window_.get(), held_};
}

std::optional<std::int64_t> memory_files::open(const std::string& path) {
  open_ = {};
  const auto entry = files_.find(path);
  if (entry == files_.end()) return std::nullopt;
  open_ = entry->second;
  return static_cast<std::int64_t>(open_.size());
}

}  // namespace kiv
