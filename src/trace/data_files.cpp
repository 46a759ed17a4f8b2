#include "trace/data_files.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "trace/diagnostics.h"
#include "trace/entry.h"
#include "trace/file_source.h"
#include "trace/record_layout.h"

namespace kiv {

namespace {

// A decoder that went wrong is stopped by the file's end alone: it may take fields of any width and
// then a text, wherever the record's payload ends.
std::size_t reach_of(const record_layout& layout) {
  const std::uint64_t fields = layout.most_bytes_of_numbers() + record_cursor::max_text;
  const std::uint64_t reach =
      record_cursor::record_start_size + std::max<std::uint64_t>(fields, record_cursor::max_size);
  return static_cast<std::size_t>(std::min<std::uint64_t>(reach, SIZE_MAX / 2));
}

}  // namespace

data_files::data_files(const std::vector<std::unique_ptr<kivfile>>& list, bool little_endian,
                       const record_layout& layout, file_source& source, diagnostics& faults)
    : list_(list),
      little_endian_(little_endian),
      reach_(reach_of(layout)),
      source_(source),
      diagnostics_(faults) {}

const kivfile* data_files::current() const {
  return next_ < list_.size() ? list_[next_].get() : nullptr;
}

std::string data_files::current_path() const {
  return current() == nullptr ? std::string() : current()->file();
}

bool data_files::rd_open() {
  const kivfile* file = current();
  if (file == nullptr) return false;
  cursor_ = {};
  const std::optional<std::int64_t> size = source_.open(file->file());
  diagnostics_.file_opening(file->file());
  if (!size) {
    diagnostics_.file_not_opened(file->file());
    return false;
  }
  const std::int64_t recorded = file->size();
  cursor_ = record_cursor(static_cast<std::size_t>(std::min(*size, recorded)), little_endian_);
  if (*size < recorded) diagnostics_.file_shorter_than_recorded(file->file(), recorded, *size);
  return true;
}

void data_files::rd_close() { diagnostics_.file_closing(current_path()); }

bool data_files::go_on() {
  while (true) {
    if (!cursor_.at_end()) read_on();
    if (!cursor_.at_end()) return true;
    rd_close();
    ++next_;
    if (!rd_open()) return false;
  }
}

// A file may have become shorter since it was opened, or be on a disk with a fault.
void data_files::read_on() {
  const std::size_t left = cursor_.left();
  const std::size_t wanted = std::min(left, reach_ + 1);
  const auto bytes = source_.bytes(cursor_.position(), wanted);
  if (bytes.size() < wanted) {
    const std::size_t held = cursor_.position() + bytes.size();
    diagnostics_.file_shorter_than_recorded(current_path(), current()->size(),
                                            static_cast<std::int64_t>(held));
    cursor_.end_after(bytes.size());
  }
  cursor_.go_on_in(bytes, reach_);
}

}  // namespace kiv
