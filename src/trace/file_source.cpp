#include "trace/file_source.h"

#include <sys/mman.h>

#include <algorithm>

#include "util/regular_file.h"

namespace kiv {

namespace {

// In small pages a large file costs more in page faults than in decoding. Only advice: a system
// that does not take it gives small ones.
void ask_for_large_pages(unsigned char* bytes, std::size_t size) {
  constexpr std::uintptr_t page = std::uintptr_t{2} << 20;
  const auto address = reinterpret_cast<std::uintptr_t>(bytes);
  const std::uintptr_t begin = (address + page - 1) / page * page;
  const std::uintptr_t end = (address + size) / page * page;
  if (begin < end) madvise(bytes + (begin - address), end - begin, MADV_HUGEPAGE);
}

}  // namespace

std::optional<file_source::bytes> disk_files::read(const std::string& path, std::int64_t most) {
  bytes_.reset();  // never two files at once
  regular_file input(path.c_str());
  if (!input.is_open()) return std::nullopt;
  const auto wanted = static_cast<std::size_t>(std::min(input.size(), most));
  bytes_ = std::make_unique_for_overwrite<unsigned char[]>(wanted);
  ask_for_large_pages(bytes_.get(), wanted);
  return bytes{{bytes_.get(), input.read(bytes_.get(), wanted)}, input.size()};
}

std::optional<file_source::bytes> memory_files::read(const std::string& path, std::int64_t most) {
  const auto entry = files_.find(path);
  if (entry == files_.end()) return std::nullopt;
  const auto size = static_cast<std::int64_t>(entry->second.size());
  return bytes{entry->second.first(static_cast<std::size_t>(std::min(size, most))), size};
}

}  // namespace kiv
