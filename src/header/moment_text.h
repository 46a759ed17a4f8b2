#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace kiv {

// The text of a moment, held in place: every id, process and statement keeps a few of them, and as
// strings each would be an allocation of its own.
class moment_text {
 public:
  moment_text() = default;
  explicit moment_text(std::string_view text)
      : length_(static_cast<std::uint8_t>(text.copy(text_.data(), text_.size()))) {}

  bool empty() const { return length_ == 0; }
  operator std::string_view() const { return {text_.data(), length_}; }  // NOLINT: it is a text

 private:
  std::array<char, 31> text_{};  // the longest has 25 characters
  std::uint8_t length_ = 0;
};

}  // namespace kiv
