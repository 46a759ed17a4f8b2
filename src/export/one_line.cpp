#include "export/one_line.h"

#include <algorithm>

#include "util/printable.h"

namespace kiv::exports {

std::string one_line(std::string_view text) {
  std::string line(text);
  std::ranges::replace_if(
      line, [](char c) { return c >= '\t' && c <= '\r'; }, ' ');
  return printable(line);
}

}  // namespace kiv::exports
