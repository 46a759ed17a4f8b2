#include "util/printable.h"

#include <algorithm>

namespace kiv {
namespace {

bool is_continuation(char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; }

}  // namespace

std::size_t utf8_length(std::string_view text) {
  if (text.empty()) return 0;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (!is_continuation(text[i])) return 0;
  }
  // Overlong forms, surrogates, and what lies beyond the last code point.
  const unsigned second = byte(1);
  const bool bad = (first == 0xe0 && second < 0xa0) || (first == 0xed && second > 0x9f) ||
                   (first == 0xf0 && second < 0x90) || (first == 0xf4 && second > 0x8f);
  return bad ? 0 : length;
}

std::string printable(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = utf8_length(text);
    const auto first = static_cast<unsigned char>(text[0]);
    // 0xc2 0x80 to 0xc2 0x9f are control characters too.
    const bool control =
        first < 0x20 || first == 0x7f ||
        (length == 2 && first == 0xc2 && static_cast<unsigned char>(text[1]) < 0xa0);
    if (length == 0 || control) {
      shown += '?';
    } else {
      shown += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return shown;
}

std::string quoted_name(std::string_view name) { return '\'' + printable(name) + '\''; }

}  // namespace kiv
