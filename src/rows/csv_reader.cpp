#include "rows/csv_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace kiv::rows {
namespace {

constexpr std::size_t first_size = std::size_t{256} << 10;
constexpr std::size_t kept_of_long_row = 4096;

}  // namespace

csv_reader::csv_reader(const std::string& path, row_end end)
    : end_(end == row_end::line ? "\n" : "<<>>\n") {
  // Non-blocking, so that opening a FIFO does not wait for a writer.
  fd_ = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd_ < 0) return;
  struct stat status {};
  if (fstat(fd_, &status) != 0 || !S_ISREG(status.st_mode)) {
    close(fd_);
    fd_ = -1;
    return;
  }
  buffer_.resize(first_size);
}

csv_reader::~csv_reader() {
  if (fd_ >= 0) close(fd_);
}

// Makes room and reads on. False at the end of the file.
bool csv_reader::fill() {
  if (at_eof_) return false;
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, filled_ - begin_);
    filled_ -= begin_;
    begin_ = 0;
  }
  if (filled_ == buffer_.size()) {
    buffer_.resize(std::min(buffer_.size() * 2, max_row + end_.size()));
  }
  ssize_t got = 0;
  do {
    got = read(fd_, buffer_.data() + filled_, buffer_.size() - filled_);
  } while (got < 0 && errno == EINTR);
  failed_ = got < 0;
  at_eof_ = got <= 0;
  if (got > 0) filled_ += static_cast<std::size_t>(got);
  return got > 0;
}

// Offset of the row end at or after `from`, npos when it is not in the buffer.
std::size_t csv_reader::find_end(std::size_t from) const {
  const char* start = buffer_.data() + from;
  const void* found = end_.size() == 1 ? std::memchr(start, '\n', filled_ - from)
                                       : memmem(start, filled_ - from, end_.data(), end_.size());
  return found ? static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data())
               : std::string_view::npos;
}

void csv_reader::consume(std::size_t size) {
  const char* start = buffer_.data() + begin_;
  if (end_.size() == 1) {
    next_line_ += size > 0 && start[size - 1] == '\n';
  } else {
    next_line_ += static_cast<std::uint64_t>(std::count(start, start + size, '\n'));
  }
  begin_ += size;
  bytes_ += size;
}

row_status csv_reader::next(std::string_view& row) {
  row = {};
  if (fd_ < 0) return row_status::end;
  row_line_ = next_line_;
  std::size_t searched = 0;  // bytes of the row that cannot hold the beginning of a row end
  for (;;) {
    const std::size_t end = find_end(begin_ + searched);
    if (end != std::string_view::npos) {
      row = {buffer_.data() + begin_, end - begin_};
      consume(row.size() + end_.size());
      return row_status::row;
    }
    const std::size_t have = filled_ - begin_;
    if (have >= max_row) return skip_long_row(row);
    searched = have - std::min(have, end_.size() - 1);
    if (fill()) continue;
    row = {buffer_.data() + begin_, have};
    consume(have);
    if (have == 0 || failed_) return row_status::end;
    return row_status::cut;
  }
}

// Keeps the beginning of the row at the front of the buffer and passes over the rest of it.
row_status csv_reader::skip_long_row(std::string_view& row) {
  std::vector<char> beginning(
      buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
      buffer_.begin() + static_cast<std::ptrdiff_t>(begin_ + kept_of_long_row));
  bool more = true;
  while (more) {
    const std::size_t end = find_end(begin_);
    if (end != std::string_view::npos) {
      consume(end - begin_ + end_.size());
      break;
    }
    const std::size_t have = filled_ - begin_;
    consume(have - std::min(have, end_.size() - 1));
    more = fill();
    if (!more) consume(filled_ - begin_);
  }
  long_row_ = std::move(beginning);
  row = {long_row_.data(), long_row_.size()};
  return row_status::too_long;
}

bool ends_with_row_end(const std::string& path, row_end end) {
  const std::string_view wanted = end == row_end::line ? "\n" : "<<>>\n";
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const std::streamoff size = file ? std::streamoff{file.tellg()} : -1;
  if (size == 0) return true;
  std::string tail(wanted.size(), '\0');
  const auto length = static_cast<std::streamoff>(wanted.size());
  return size >= length && file.seekg(size - length) && file.read(tail.data(), length) &&
         tail == wanted;
}

}  // namespace kiv::rows
