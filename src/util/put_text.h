#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kiv {

// Copies `text` to `out` and returns its end. Most columns are too short for a call to pay: they go
// as two pieces of one size, which overlap where the text is not twice as long.
inline char* put_text(char* out, std::string_view text) {
  const std::size_t length = text.size();
  const auto two_pieces = [&](auto piece) {
    std::memcpy(&piece, text.data(), sizeof piece);
    auto last = piece;
    std::memcpy(&last, text.data() + length - sizeof last, sizeof last);
    std::memcpy(out, &piece, sizeof piece);
    std::memcpy(out + length - sizeof last, &last, sizeof last);
  };
  struct sixteen_bytes {
    char bytes[16];
  };
  if (length > 32) {
    std::memcpy(out, text.data(), length);
  } else if (length >= 16) {
    two_pieces(sixteen_bytes{});
  } else if (length >= 8) {
    two_pieces(std::uint64_t{});
  } else if (length >= 4) {
    two_pieces(std::uint32_t{});
  } else {
    for (std::size_t i = 0; i < length; ++i) out[i] = text[i];
  }
  return out + length;
}

}  // namespace kiv
