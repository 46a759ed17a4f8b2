#include "human.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "separators.h"

namespace kiv::db {
namespace {

std::int64_t number_at(std::string_view text, std::size_t at, std::size_t length) {
  std::int64_t value = 0;
  std::from_chars(text.data() + at, text.data() + at + length, value);
  return value;
}

std::int64_t milliseconds(std::string_view time) {
  using namespace std::chrono;
  const year_month_day date(year(static_cast<int>(number_at(time, 0, 4))),
                            month(static_cast<unsigned>(number_at(time, 5, 2))),
                            day(static_cast<unsigned>(number_at(time, 8, 2))));
  const auto days = sys_days(date).time_since_epoch().count();
  return ((days * std::int64_t{24} + number_at(time, 11, 2)) * 60 + number_at(time, 14, 2)) *
             60'000 +
         number_at(time, 17, 2) * 1000 + number_at(time, 20, 3);
}

}  // namespace

std::string grouped(std::int64_t number) {
  std::string text = std::to_string(number);
  const std::ptrdiff_t first = number < 0 ? 2 : 1;
  for (auto at = static_cast<std::ptrdiff_t>(text.size()) - 3; at >= first; at -= 3) {
    text.insert(static_cast<std::size_t>(at), 1, ',');
  }
  return text;
}

std::string human_bytes(std::int64_t bytes) {
  constexpr std::array units = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  double value = static_cast<double>(bytes);
  if (std::abs(value) < 1024) return std::to_string(bytes) + " B";
  std::size_t unit = 0;
  // What would be printed as 1024.0 takes the next unit.
  for (value /= 1024; std::abs(value) >= 1023.95 && unit + 1 < units.size(); value /= 1024) ++unit;
  char text[32];
  std::snprintf(text, sizeof text, "%.1f %s", value, units[unit]);
  return text;
}

std::string human_duration(std::int64_t milliseconds) {
  const bool negative = milliseconds < 0;
  const std::uint64_t all = negative ? 0 - static_cast<std::uint64_t>(milliseconds)
                                     : static_cast<std::uint64_t>(milliseconds);
  const double seconds = static_cast<double>(all % 60'000) / 1000;
  const unsigned long long minutes = all / 60'000;
  char text[64];
  if (minutes >= 60) {
    std::snprintf(text, sizeof text, "%lluh %02llum %06.3fs", minutes / 60, minutes % 60, seconds);
  } else if (minutes > 0) {
    std::snprintf(text, sizeof text, "%llum %06.3fs", minutes, seconds);
  } else {
    std::snprintf(text, sizeof text, "%.3fs", seconds);
  }
  std::string signed_text(negative ? "-" : "");
  return signed_text += text;
}

std::optional<std::int64_t> milliseconds_between(std::string_view start, std::string_view end) {
  if (!starts_with_time(start) || !starts_with_time(end)) return std::nullopt;
  return milliseconds(end) - milliseconds(start);
}

std::optional<growth_limit> parse_limit(std::string_view text) {
  growth_limit limit{0, false};
  const char* end = text.data() + text.size();
  const auto [stop, failure] = std::from_chars(text.data(), end, limit.value);
  if (failure != std::errc() || !std::isfinite(limit.value) || limit.value < 0) return std::nullopt;
  const std::string_view unit(stop, end);
  if (unit == "%") {
    limit.percent = true;
  } else if (unit == "K") {
    limit.value *= 1024;
  } else if (unit == "M") {
    limit.value *= 1024 * 1024;
  } else if (unit == "G") {
    limit.value *= 1024.0 * 1024 * 1024;
  } else if (!unit.empty()) {
    return std::nullopt;
  }
  return limit;
}

}  // namespace kiv::db
