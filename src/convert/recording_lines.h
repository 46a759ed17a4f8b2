#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "convert/recording_bytes.h"

namespace kiv::convert {

// The lines of a recording, one after another.
class recording_lines {
 public:
  explicit recording_lines(std::unique_ptr<recording_bytes> bytes);

  // The next line without its end, which looks into the buffer until the next call. False at the
  // end. A last line that has no end is not given: it may be cut.
  bool next(std::string_view& line) {
    const char* from = buffer_.data() + position_;
    const void* end = std::memchr(from, '\n', filled_ - position_);
    if (end == nullptr) return next_after_reading(line);
    const auto length = static_cast<std::size_t>(static_cast<const char*>(end) - from);
    line = {from, length};
    position_ += length + 1;
    ++number_;
    return true;
  }

  std::uint64_t number() const { return number_; }  // of the line given last, from 1
  const recording_bytes& bytes() const { return *bytes_; }
  // Why the lines ended before their time; empty when they did not.
  const std::string& fault() const { return fault_; }

 private:
  bool next_after_reading(std::string_view& line);

  std::unique_ptr<recording_bytes> bytes_;
  std::vector<char> buffer_;
  std::size_t position_ = 0, filled_ = 0;
  std::uint64_t number_ = 0;
  std::string fault_;
};

// Takes the fields of a line from its front. Numbers are hexadecimal.
class line_fields {
 public:
  explicit line_fields(std::string_view rest) : rest_(rest) {}

  // False when no number follows, or one of more than 64 bits.
  bool take(std::uint64_t& number) {
    skip_blank();
    std::size_t digits = 0;
    std::uint64_t value = 0;
    for (; digits < rest_.size(); ++digits) {
      const unsigned digit = digit_of(rest_[digits]);
      if (digit > 15) break;
      value = value << 4 | digit;
    }
    if (digits == 0 || digits > 16) return false;
    if (digits < rest_.size() && rest_[digits] != ' ') return false;
    rest_.remove_prefix(digits);
    number = value;
    return true;
  }
  // What is left, without the blank before it.
  std::string_view rest() {
    skip_blank();
    return rest_;
  }
  bool empty() const { return rest_.empty(); }

 private:
  static unsigned digit_of(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    return 16;
  }
  void skip_blank() {
    if (!rest_.empty() && rest_.front() == ' ') rest_.remove_prefix(1);
  }

  std::string_view rest_;
};

}  // namespace kiv::convert
