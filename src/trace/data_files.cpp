#include "trace/data_files.h"

#include "trace/diagnostics.h"
#include "trace/entry.h"
#include "trace/file_source.h"

namespace kiv {

const kivfile* data_files::current() const {
  return next_ < list_.size() ? list_[next_].get() : nullptr;
}

std::string data_files::current_path() const {
  return current() == nullptr ? std::string() : current()->file();
}

bool data_files::rd_open() {
  const kivfile* file = current();
  if (file == nullptr) return false;
  cursor_ = {};  // the source gives the bytes of one file at a time
  const auto read = source_.read(file->file(), file->size());
  diagnostics_.file_opening(file->file());
  if (!read) {
    diagnostics_.file_not_opened(file->file());
    return false;
  }
  cursor_ = record_cursor(read->held.data(), read->held.size(), little_endian_);
  const auto held = static_cast<std::int64_t>(read->held.size());
  if (held < file->size())
    diagnostics_.file_shorter_than_recorded(file->file(), file->size(), held);
  return true;
}

void data_files::rd_close() { diagnostics_.file_closing(current_path()); }

bool data_files::go_to_next_file() {
  do {
    rd_close();
    ++next_;
    if (!rd_open()) return false;
  } while (cursor_.at_end());
  return true;
}

}  // namespace kiv
