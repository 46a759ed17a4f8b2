#include "trace/trace_writer.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace kiv {
namespace {

// What a header says of a file whose size is not known yet; the most that readers take.
constexpr std::size_t size_of_open_file = std::numeric_limits<std::int32_t>::max();

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

int create(const std::string& path) {
  return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
}

trace_writer::options completed(trace_writer::options chosen) {
  if (chosen.recorded_directory.empty()) chosen.recorded_directory = chosen.directory;
  chosen.max_file_size =
      std::min(chosen.max_file_size, size_of_open_file - record_bytes::max_payload - 64 * 1024 - 3);
  return chosen;
}

}  // namespace

trace_writer::trace_writer(const trace_identity& identity, options chosen)
    : options_(completed(std::move(chosen))),
      header_(make_header_text(identity, options_.little_endian, options_.address_width)),
      pid_(std::to_string(identity.pid)),
      encoder_(record_layout(header_.entries), options_.little_endian) {}

trace_writer::~trace_writer() {
  if (data_fd_ >= 0) {
    flush();
    ::close(data_fd_);
  }
  if (header_fd_ >= 0) ::close(header_fd_);
}

std::string trace_writer::header_path() const {
  return options_.directory + "/" + header_file_name(options_.base_name, pid_);
}

bool trace_writer::fail(const std::string& path) {
  if (error_.empty()) error_ = path + ": " + std::strerror(errno);
  return false;
}

bool trace_writer::open() {
  std::error_code made;
  std::filesystem::create_directories(options_.directory, made);
  if (made) {
    errno = made.value();
    return fail(options_.directory);
  }
  header_fd_ = create(header_path());
  if (header_fd_ < 0) return fail(header_path());
  return open_data_file() && write_header();
}

bool trace_writer::open_data_file() {
  const std::string name = data_file_name(options_.base_name, pid_, header_.files.size());
  data_path_ = options_.directory + "/" + name;
  data_fd_ = create(data_path_);
  if (data_fd_ < 0) return fail(data_path_);
  header_.files.push_back(
      {options_.recorded_directory + "/" + name, std::to_string(size_of_open_file)});
  data_size_ = 0;
  return true;
}

// What changed is a part at the end, and it is written by one call: whenever the process dies, the
// header that stands there can be read.
bool trace_writer::write_header() {
  std::string document = header_.document();
  const auto same =
      static_cast<std::size_t>(std::mismatch(document.begin(), document.end(),
                                             header_written_.begin(), header_written_.end())
                                   .first -
                               document.begin());
  if (!write_at(header_fd_, std::string_view(document).substr(same), same) ||
      (document.size() < header_written_.size() &&
       ftruncate(header_fd_, static_cast<off_t>(document.size())) != 0)) {
    return fail(header_path());
  }
  header_written_ = std::move(document);
  return true;
}

bool trace_writer::write_buffer() {
  std::string& bytes = encoder_.bytes();
  if (!error_.empty()) {
    bytes.clear();
    return false;
  }
  if (!write_at(data_fd_, bytes, data_size_)) return fail(data_path_);
  data_size_ += bytes.size();
  bytes.clear();
  if (data_size_ < options_.max_file_size) return true;
  return end_data_file() && open_data_file() && write_header();
}

bool trace_writer::end_data_file() {
  header_.files.back().size = std::to_string(data_size_);
  const int closed = ::close(std::exchange(data_fd_, -1));
  return closed == 0 || fail(data_path_);
}

bool trace_writer::flush() {
  if (data_fd_ < 0 || !error_.empty()) return false;
  return encoder_.bytes().empty() || write_buffer();
}

bool trace_writer::close(moment end) {
  if (data_fd_ < 0 || (!encoder_.bytes().empty() && !write_buffer())) return false;
  if (!end_data_file()) return false;
  set_end_time(header_, end);
  header_.closed = true;
  return write_header();
}

}  // namespace kiv
