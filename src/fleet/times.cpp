#include "fleet/times.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

namespace kiv::fleet {

double distance_of(std::uint64_t a, std::uint64_t b) {
  if (a == b) return 1;
  const auto [less, more] = std::minmax(a, b);
  if (less == 0) return std::numeric_limits<double>::infinity();
  return static_cast<double>(more) / static_cast<double>(less);
}

std::string times_text(std::uint64_t value, std::uint64_t of) {
  if (of == 0) return "-";
  return fmt::format("{:.2f} x", static_cast<double>(value) / static_cast<double>(of));
}

std::string text_of(const multiple& m) {
  std::string text = fmt::format("{}.{:03}", m.thousandths / 1000, m.thousandths % 1000);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) text.pop_back();
  return text;
}

}  // namespace kiv::fleet
