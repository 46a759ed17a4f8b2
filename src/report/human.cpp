#include "report/human.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>

namespace kiv::report {
namespace {

constexpr std::string_view time_form = "0000-00-00 00:00:00.000";

bool is_time(std::string_view text) {
  if (text.size() != time_form.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (time_form[i] == '0' ? !digit : text[i] != time_form[i]) return false;
  }
  return true;
}

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

std::uint64_t magnitude(std::int64_t number) {
  const auto bits = static_cast<std::uint64_t>(number);
  return number < 0 ? 0 - bits : bits;
}

std::string with_sign(bool negative, std::string text) {
  if (negative) text.insert(0, 1, '-');
  return text;
}

}  // namespace

std::string grouped(std::uint64_t number) {
  std::string text = fmt::format("{}", number);
  for (auto at = static_cast<std::ptrdiff_t>(text.size()) - 3; at > 0; at -= 3) {
    text.insert(static_cast<std::size_t>(at), 1, ',');
  }
  return text;
}

std::string grouped(std::int64_t number) {
  return with_sign(number < 0, grouped(magnitude(number)));
}

std::string human_bytes(std::uint64_t bytes) {
  constexpr std::array units = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  if (bytes < 1024) return fmt::format("{} B", bytes);
  double value = static_cast<double>(bytes) / 1024;
  std::size_t unit = 0;
  // What would be printed as 1024.0 takes the next unit.
  for (; value >= 1023.95 && unit + 1 < units.size(); value /= 1024) ++unit;
  return fmt::format("{:.1f} {}", value, units[unit]);
}

std::string human_bytes(std::int64_t bytes) {
  return with_sign(bytes < 0, human_bytes(magnitude(bytes)));
}

std::string human_change(std::int64_t bytes) { return (bytes > 0 ? "+" : "") + human_bytes(bytes); }

std::string human_share(std::uint64_t part, std::uint64_t whole) {
  if (whole == 0) return "-";
  const double share = 100 * static_cast<double>(part) / static_cast<double>(whole);
  if (part > 0 && share < 0.05) return "<0.1 %";
  return fmt::format("{:.1f} %", share);
}

std::string human_duration(std::int64_t milliseconds) {
  const std::uint64_t all = magnitude(milliseconds);
  const double seconds = static_cast<double>(all % 60'000) / 1000;
  const std::uint64_t minutes = all / 60'000;
  const bool negative = milliseconds < 0;
  if (minutes >= 60) {
    return with_sign(negative,
                     fmt::format("{}h {:02}m {:06.3f}s", minutes / 60, minutes % 60, seconds));
  }
  if (minutes > 0) return with_sign(negative, fmt::format("{}m {:06.3f}s", minutes, seconds));
  return with_sign(negative, fmt::format("{:.3f}s", seconds));
}

std::optional<std::int64_t> milliseconds_between(std::string_view start, std::string_view end) {
  if (!is_time(start) || !is_time(end)) return std::nullopt;
  return milliseconds(end) - milliseconds(start);
}

}  // namespace kiv::report
