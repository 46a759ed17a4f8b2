#include "tables/csv_filebuf.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "trace/diagnostics.h"

namespace kiv {

void open_files::flush_all() {
  for (csv_filebuf* file = first_; file; file = file->next_open_) file->flush();
}

bool csv_filebuf::open(const std::string& path, bool create) {
  close();
  fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | (create ? O_TRUNC : O_APPEND), 0666);
  if (fd_ < 0) return false;
  struct stat info {};
  flushed_ = !create && fstat(fd_, &info) == 0 ? std::int64_t{info.st_size} : 0;
  failed_ = false;
  path_ = path;
  link();
  return true;
}

bool csv_filebuf::close() {
  if (!is_open()) return true;
  flush();
  if (::close(fd_) != 0) failed_ = true;
  fd_ = -1;
  flushed_ = -1;
  unlink();
  buffer_.reset();
  begin_ = next_ = end_ = nullptr;
  if (failed_) diagnostics_.cannot_write(path_);
  return !failed_;
}

void csv_filebuf::write(std::string_view text) {
  if (text.size() >= room()) {
    if (!make_room()) return;
    if (text.size() >= room()) {
      write_out(text.data(), text.size());
      return;
    }
  }
  next_ += text.copy(next_, text.size());
}

bool csv_filebuf::flush() {
  const auto pending = static_cast<std::size_t>(next_ - begin_);
  next_ = begin_;
  return write_out(begin_, pending);
}

bool csv_filebuf::write_out(const char* bytes, std::size_t count) {
  while (count > 0 && !failed_) {
    const ssize_t done = ::write(fd_, bytes, count);
    if (done <= 0) {
      failed_ = done == 0 || errno != EINTR;
      continue;
    }
    bytes += done;
    count -= static_cast<std::size_t>(done);
    flushed_ += done;
  }
  return !failed_;
}

char* csv_filebuf::claim_anew(std::size_t bytes) {
  return make_room() && bytes < room() ? next_ : nullptr;
}

// False when what is pending, or what comes, goes nowhere.
bool csv_filebuf::make_room() {
  if (!is_open() || !flush()) return false;
  if (!buffer_) {
    buffer_.reset(new (std::nothrow) char[capacity]);
    begin_ = next_ = buffer_.get();
    end_ = buffer_ ? begin_ + capacity : begin_;
  }
  return true;
}

void csv_filebuf::link() {
  previous_open_ = nullptr;
  next_open_ = files_.first_;
  if (next_open_) next_open_->previous_open_ = this;
  files_.first_ = this;
}

void csv_filebuf::unlink() {
  if (next_open_) next_open_->previous_open_ = previous_open_;
  (previous_open_ ? previous_open_->next_open_ : files_.first_) = next_open_;
}

}  // namespace kiv
