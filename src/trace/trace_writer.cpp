#include "trace/trace_writer.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

namespace kiv {
namespace {

namespace fs = std::filesystem;

// As long as it lives, nobody ends the thread in a system call: what is half done would stay so.
class uncancelled {
 public:
  uncancelled() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
  ~uncancelled() { pthread_setcancelstate(before_, nullptr); }
  uncancelled(const uncancelled&) = delete;
  uncancelled& operator=(const uncancelled&) = delete;

 private:
  int before_ = 0;
};

bool write_at(int fd, std::string_view bytes, std::size_t at) {
  while (!bytes.empty()) {
    const ssize_t written = pwrite(fd, bytes.data(), bytes.size(), static_cast<off_t>(at));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
    at += static_cast<std::size_t>(written);
  }
  return true;
}

// A file to write, -1 when there is none. A program that closed its standard streams still prints
// into the descriptors of these numbers, so they are left alone.
int create_file(const std::string& path, int flags) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, 0666);
  if (fd < 0 || fd > STDERR_FILENO) return fd;
  const int moved = fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int failure = errno;
  ::close(fd);
  errno = failure;
  return moved;
}

// The number is given back whatever comes of it; what an interrupted close() did is not told.
bool close_file(int fd) { return ::close(fd) == 0 || errno == EINTR; }

// A file of this content and nothing else.
bool write_new_file(const std::string& path, std::string_view content) {
  const int fd = create_file(path, O_TRUNC);
  if (fd < 0) return false;
  if (write_at(fd, content, 0)) return close_file(fd);
  const int failure = errno;
  ::close(fd);
  errno = failure;
  return false;
}

trace_writer::options completed(trace_writer::options chosen) {
  if (chosen.recorded_directory.empty()) chosen.recorded_directory = chosen.directory;
  chosen.max_file_size = std::clamp<std::size_t>(chosen.max_file_size, 1, size_of_open_file);
  chosen.buffer_size = std::max<std::size_t>(chosen.buffer_size, 1);
  return chosen;
}

// Puts in front of the data files all that does not wait for the process's end.
header_text told_early(header_text header) {
  const auto is_known = [](const header_text::element& one) { return one.name != "time_end"; };
  std::copy_if(header.end.begin(), header.end.end(), std::back_inserter(header.identity), is_known);
  std::erase_if(header.end, is_known);
  return header;
}

}  // namespace

trace_writer::trace_writer(const trace_identity& identity, options chosen)
    : options_(completed(std::move(chosen))),
      header_(
          told_early(make_header_text(identity, options_.little_endian, options_.address_width))),
      pid_(std::to_string(identity.pid)),
      encoder_(record_layout(header_.entries), options_.little_endian),
      directory_(options_.directory) {
  encoder_.bytes().reserve(options_.buffer_size + record_bytes::max_record);
  measure_room();
}

trace_writer::~trace_writer() {
  const uncancelled while_closing;
  if (data_fd_ < 0) return;
  if (error_.empty()) write_at(data_fd_, encoder_.bytes(), data_size_);
  ::close(data_fd_);
}

std::string trace_writer::header_path() const {
  return directory_ + "/" + header_file_name(options_.base_name, pid_);
}

bool trace_writer::fail(const std::string& path) {
  if (error_.empty()) error_ = path + ": " + std::strerror(errno);
  return false;
}

bool trace_writer::open() {
  const uncancelled while_opening;
  if (!make_directory() || !claim_header()) return false;
  if (open_data_file() && write_header()) return true;
  if (data_fd_ >= 0) {
    ::close(std::exchange(data_fd_, -1));
    std::remove(data_path_.c_str());
  }
  std::remove(header_path().c_str());
  return false;
}

bool trace_writer::make_directory() {
  std::error_code failure;
  fs::create_directories(options_.directory, failure);
  if (!failure) directory_ = fs::absolute(options_.directory, failure);
  if (!failure) return true;
  errno = failure.value();
  return fail(options_.directory);
}

bool trace_writer::claim_header() {
  const int fd = create_file(header_path(), options_.replace ? O_TRUNC : O_EXCL);
  return (fd >= 0 && close_file(fd)) || fail(header_path());
}

bool trace_writer::open_data_file() {
  const std::string name = data_file_name(options_.base_name, pid_, header_.files.size());
  data_path_ = directory_ + "/" + name;
  header_.files.push_back(
      {options_.recorded_directory + "/" + name, std::to_string(size_of_open_file)});
  data_size_ = 0;
  data_fd_ = create_file(data_path_, O_TRUNC);
  return data_fd_ >= 0 || fail(data_path_);
}

bool trace_writer::end_data_file() {
  header_.files.back().size = std::to_string(data_size_);
  return close_file(std::exchange(data_fd_, -1)) || fail(data_path_);
}

// The new header takes the place of the old one as a whole. A run is the files whose names hold
// "kivhdr", so until then it has another name.
bool trace_writer::write_header() {
  const std::string path = header_path();
  const std::string next = directory_ + "/" + options_.base_name + "." + pid_ + ".next";
  if (write_new_file(next, header_.document()) && std::rename(next.c_str(), path.c_str()) == 0) {
    return true;
  }
  fail(path);
  std::remove(next.c_str());
  return false;
}

void trace_writer::measure_room() {
  const std::size_t left = options_.max_file_size - std::min(data_size_, options_.max_file_size);
  room_ = std::min(options_.buffer_size, left + 1);
}

void trace_writer::make_room(std::size_t record) {
  const uncancelled while_writing;
  const std::string& bytes = encoder_.bytes();
  const bool is_full = data_size_ + bytes.size() > options_.max_file_size;
  if (is_full && data_size_ + record > 0) {
    if (write_out(record) && end_data_file() && open_data_file()) write_header();
  }
  if (bytes.size() >= options_.buffer_size) write_out(bytes.size());
  measure_room();
}

bool trace_writer::write_out(std::size_t count) {
  std::string& bytes = encoder_.bytes();
  if (error_.empty() && !write_at(data_fd_, std::string_view(bytes).substr(0, count), data_size_)) {
    fail(data_path_);
  }
  if (!error_.empty()) {
    bytes.clear();
    return false;
  }
  data_size_ += count;
  bytes.erase(0, count);
  return true;
}

bool trace_writer::flush() {
  const uncancelled while_writing;
  if (data_fd_ < 0 || !write_out(encoder_.bytes().size())) return false;
  measure_room();
  return true;
}

bool trace_writer::close(moment end) {
  const uncancelled while_closing;
  if (!flush() || !end_data_file()) return false;
  set_end_time(header_, end);
  header_.closed = true;
  return write_header();
}

}  // namespace kiv
