#include "convert/recording_lines.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kiv::convert {
namespace {

constexpr std::size_t usual_buffer = std::size_t{256} << 10;
constexpr std::size_t longest_line = std::size_t{16} << 20;

}  // namespace

recording_lines::recording_lines(std::unique_ptr<recording_bytes> bytes)
    : bytes_(std::move(bytes)), buffer_(usual_buffer) {}

bool recording_lines::next_after_reading(std::string_view& line) {
  for (;;) {
    const std::size_t left = filled_ - position_;
    std::memmove(buffer_.data(), buffer_.data() + position_, left);
    position_ = 0;
    filled_ = left;
    if (filled_ == buffer_.size()) {
      if (filled_ >= longest_line) {
        fault_ = "a line is longer than 16 MiB";
        return false;
      }
      buffer_.resize(buffer_.size() * 2);
    }
    const std::size_t got = bytes_->read(buffer_.data() + filled_, buffer_.size() - filled_);
    if (got == 0) {
      fault_ = bytes_->fault();
      if (fault_.empty() && left != 0) fault_ = "the last line is cut";
      return false;
    }
    filled_ += got;
    if (std::memchr(buffer_.data() + left, '\n', got) != nullptr) return next(line);
  }
}

}  // namespace kiv::convert
