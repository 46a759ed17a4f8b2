#include "convert/recording_bytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace kiv::convert {
namespace {

constexpr std::size_t packed_size = std::size_t{128} << 10;
constexpr const char* breaks_off = "the file breaks off within its packed data";
constexpr const char* is_damaged = "the packed data is damaged";

// The file itself.
class plain_bytes : public recording_bytes {
 public:
  explicit plain_bytes(int fd) : fd_(fd) {}
  ~plain_bytes() override { close(fd_); }
  plain_bytes(const plain_bytes&) = delete;
  plain_bytes& operator=(const plain_bytes&) = delete;

  std::size_t read(char* to, std::size_t most) override {
    ssize_t got = 0;
    do {
      got = ::read(fd_, to, most);
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
      fault_ = std::strerror(errno);
      return 0;
    }
    taken_ += static_cast<std::size_t>(got);
    return static_cast<std::size_t>(got);
  }
  std::uint64_t taken() const override { return taken_; }
  const std::string& fault() const override { return fault_; }

 private:
  int fd_;
  std::uint64_t taken_ = 0;
  std::string fault_;
};

// What the two packers have in common: packed bytes at hand, and a fault.
class packed_bytes : public recording_bytes {
 public:
  explicit packed_bytes(std::unique_ptr<plain_bytes> file) : file_(std::move(file)) {}
  std::uint64_t taken() const override { return file_->taken(); }
  const std::string& fault() const override { return fault_.empty() ? file_->fault() : fault_; }

 protected:
  // False at the end of the file.
  bool fill() {
    const std::size_t got = file_->read(packed_.data(), packed_.size());
    rest_ = {packed_.data(), got};
    return got != 0;
  }
  void fail(const char* fault) {
    if (fault_.empty()) fault_ = fault;
  }
  bool failed() const { return !fault_.empty(); }

  std::string_view rest_;

 private:
  std::unique_ptr<plain_bytes> file_;
  std::vector<char> packed_ = std::vector<char>(packed_size);
  std::string fault_;
};

class zstd_bytes : public packed_bytes {
 public:
  explicit zstd_bytes(std::unique_ptr<plain_bytes> file) : packed_bytes(std::move(file)) {}

  std::size_t read(char* to, std::size_t most) override {
    ZSTD_outBuffer out{to, most, 0};
    while (out.pos == 0 && !failed()) {
      if (rest_.empty() && !held_back_ && !fill()) {
        if (inside_) fail(breaks_off);
        break;
      }
      ZSTD_inBuffer in{rest_.data(), rest_.size(), 0};
      const std::size_t left = ZSTD_decompressStream(stream_.get(), &out, &in);
      rest_.remove_prefix(in.pos);
      if (ZSTD_isError(left) != 0) fail(is_damaged);
      inside_ = left != 0;
      held_back_ = inside_ && out.pos == out.size;
    }
    return out.pos;
  }

 private:
  std::unique_ptr<ZSTD_DStream, decltype(&ZSTD_freeDStream)> stream_{ZSTD_createDStream(),
                                                                     &ZSTD_freeDStream};
  bool inside_ = false;     // a frame that has begun and not ended
  bool held_back_ = false;  // bytes that had no room in the last output
};

class gzip_bytes : public packed_bytes {
 public:
  explicit gzip_bytes(std::unique_ptr<plain_bytes> file) : packed_bytes(std::move(file)) {
    constexpr int gzip_with_any_window = 15 + 16;
    if (inflateInit2(&stream_, gzip_with_any_window) != Z_OK) fail("out of memory");
  }
  ~gzip_bytes() override { inflateEnd(&stream_); }
  gzip_bytes(const gzip_bytes&) = delete;
  gzip_bytes& operator=(const gzip_bytes&) = delete;

  std::size_t read(char* to, std::size_t most) override {
    most = std::min(most, packed_size);
    stream_.next_out = reinterpret_cast<unsigned char*>(to);
    stream_.avail_out = static_cast<unsigned>(most);
    while (stream_.avail_out == most && !failed()) {
      if (rest_.empty() && !held_back_ && !fill()) {
        if (inside_) fail(breaks_off);
        break;
      }
      // The library takes bytes that it does not change through a pointer that could.
      stream_.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(rest_.data()));
      stream_.avail_in = static_cast<unsigned>(rest_.size());
      const int result = inflate(&stream_, Z_NO_FLUSH);
      rest_.remove_prefix(rest_.size() - stream_.avail_in);
      inside_ = result != Z_STREAM_END;
      held_back_ = inside_ && stream_.avail_out == 0;
      if (result == Z_STREAM_END) {
        inflateReset(&stream_);  // members may follow one another
      } else if (result != Z_OK && result != Z_BUF_ERROR) {
        fail(is_damaged);
      }
    }
    return most - stream_.avail_out;
  }

 private:
  z_stream stream_{};
  bool inside_ = false;     // a member that has begun and not ended
  bool held_back_ = false;  // bytes that had no room in the last output
};

}  // namespace

std::unique_ptr<recording_bytes> open_recording(const std::string& path, std::string& error) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat info {};
  if (fd < 0 || fstat(fd, &info) != 0) {
    error = std::strerror(errno);
    if (fd >= 0) close(fd);
    return nullptr;
  }
  auto file = std::make_unique<plain_bytes>(fd);
  if (!S_ISREG(info.st_mode)) {
    error = "is no regular file";
    return nullptr;
  }
  std::array<char, 4> start{};
  const ssize_t got = pread(fd, start.data(), start.size(), 0);
  const std::string_view magic(start.data(), got < 0 ? 0 : static_cast<std::size_t>(got));
  if (magic == "\x28\xb5\x2f\xfd") return std::make_unique<zstd_bytes>(std::move(file));
  if (magic.starts_with("\x1f\x8b")) return std::make_unique<gzip_bytes>(std::move(file));
  return file;
}

}  // namespace kiv::convert
