#include "output/csv_filebuf.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <new>

namespace kiv {

csv_filebuf* csv_filebuf::first_open_ = nullptr;

csv_filebuf::~csv_filebuf() { close(); }

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
  setp(nullptr, nullptr);
  if (failed_) std::cerr << "cannot write " << path_ << '\n';
  return !failed_;
}

void csv_filebuf::flush_all() {
  for (csv_filebuf* file = first_open_; file; file = file->next_open_) file->flush();
}

csv_filebuf::int_type csv_filebuf::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char letter = traits_type::to_char_type(c);
  return put_slowly(&letter, 1) ? c : traits_type::eof();
}

std::streamsize csv_filebuf::xsputn(const char* text, std::streamsize count) {
  const auto bytes = static_cast<std::size_t>(count);
  if (count < epptr() - pptr()) {
    std::memcpy(pptr(), text, bytes);
    pbump(static_cast<int>(count));
    return count;
  }
  return put_slowly(text, bytes) ? count : 0;
}

int csv_filebuf::sync() { return flush() ? 0 : -1; }

bool csv_filebuf::flush() {
  const auto pending = static_cast<std::size_t>(pptr() - pbase());
  setp(pbase(), epptr());
  return write_out(pbase(), pending);
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

bool csv_filebuf::put_slowly(const char* text, std::size_t count) {
  if (!make_room()) return false;
  if (count >= static_cast<std::size_t>(epptr() - pptr())) return write_out(text, count);
  std::memcpy(pptr(), text, count);
  pbump(static_cast<int>(count));
  return true;
}

char* csv_filebuf::claim_anew(std::size_t bytes) {
  return make_room() && bytes < static_cast<std::size_t>(epptr() - pptr()) ? pptr() : nullptr;
}

bool csv_filebuf::make_room() {
  if (!is_open() || !flush()) return false;
  if (!buffer_) {
    buffer_.reset(new (std::nothrow) char[capacity]);
    if (buffer_) setp(buffer_.get(), buffer_.get() + capacity);
  }
  return true;
}

void csv_filebuf::link() {
  previous_open_ = nullptr;
  next_open_ = first_open_;
  if (next_open_) next_open_->previous_open_ = this;
  first_open_ = this;
}

void csv_filebuf::unlink() {
  if (next_open_) next_open_->previous_open_ = previous_open_;
  (previous_open_ ? previous_open_->next_open_ : first_open_) = next_open_;
}

}  // namespace kiv
