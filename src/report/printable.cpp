#include "report/printable.h"

#include <algorithm>
#include <functional>

namespace kiv::report {
namespace {

bool is_continuation(char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; }

// Where the character with this number begins.
std::size_t offset_of(std::string_view text, std::size_t character) {
  std::size_t at = 0;
  for (; character > 0 && at < text.size(); --character) {
    at += std::max<std::size_t>(utf8_length(text.substr(at)), 1);
  }
  return at;
}

}  // namespace

std::size_t display_width(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(text, std::not_fn(is_continuation)));
}

std::string shortened(std::string_view text, std::size_t width) {
  const std::size_t columns = display_width(text);
  if (columns <= width) return std::string(text);
  if (width == 0) return {};
  const std::size_t head = width / 2, tail = width - 1 - head;
  return std::string(text.substr(0, offset_of(text, head))) + "…" +
         std::string(text.substr(offset_of(text, columns - tail)));
}

}  // namespace kiv::report
