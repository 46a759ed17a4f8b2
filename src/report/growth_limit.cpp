#include "report/growth_limit.h"

#include <charconv>
#include <cmath>

namespace kiv::report {

std::optional<growth_limit> parse_growth_limit(std::string_view text) {
  const auto equals = text.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  const auto of = find_measure(text.substr(0, equals));
  if (!of) return std::nullopt;
  growth_limit limit;
  limit.of = *of;
  limit.text = text.substr(equals + 1);
  const char* end = limit.text.data() + limit.text.size();
  const auto [stop, failure] = std::from_chars(limit.text.data(), end, limit.value);
  if (failure != std::errc() || !std::isfinite(limit.value) || limit.value < 0) return std::nullopt;
  const std::string_view unit(stop, static_cast<std::size_t>(end - stop));
  if (unit == "%") {
    limit.percent = true;
  } else if (unit == "K") {
    limit.value *= 1024;
  } else if (unit == "M") {
    limit.value *= 1024.0 * 1024;
  } else if (unit == "G") {
    limit.value *= 1024.0 * 1024 * 1024;
  } else if (!unit.empty()) {
    return std::nullopt;
  }
  return limit;
}

bool is_passed(const growth_limit& limit, std::uint64_t before, std::uint64_t after) {
  if (after <= before) return false;
  const auto grown = static_cast<double>(after - before);
  if (!limit.percent) return grown > limit.value;
  return before == 0 || grown * 100 > limit.value * static_cast<double>(before);
}

}  // namespace kiv::report
