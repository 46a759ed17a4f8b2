#include "reader/data_files.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <iostream>

#include "header/entry.h"
#include "header/regular_file.h"

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

void data_files::set_list(const std::vector<std::unique_ptr<kivfile>>& list, bool little_endian) {
  list_ = &list;
  little_endian_ = little_endian;
}

const kivfile* data_files::current() const {
  return list_ != nullptr && next_ < list_->size() ? (*list_)[next_].get() : nullptr;
}

std::string data_files::current_path() const {
  return current() == nullptr ? std::string() : current()->file();
}

bool data_files::rd_open() {
  const kivfile* file = current();
  if (file == nullptr) return false;
  regular_file input(file->file().c_str());
  std::cerr << "Opening file: \"" + file->file() + "\"\n";
  if (!input.is_open()) {
    std::cerr << " error opening " + file->file() + "'\n";
    return false;
  }
  const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(input.size(), file->size()));
  bytes_.reset();  // never two files at once
  bytes_ = std::make_unique_for_overwrite<unsigned char[]>(wanted);
  ask_for_large_pages(bytes_.get(), wanted);
  cursor_ = record_cursor(bytes_.get(), input.read(bytes_.get(), wanted), little_endian_);
  open_ = true;
  return true;
}

void data_files::rd_close() {
  open_ = false;
  std::cerr << " closing file " + current_path() + "\n";
}

bool data_files::go_to_next_file() {
  do {
    rd_close();
    ++next_;
    if (!rd_open()) return false;
  } while (cursor_.at_end());
  return true;
}

}  // namespace kiv
