#include "fleet/fleet_options.h"

#include <charconv>
#include <limits>

namespace kiv::fleet {
namespace {

constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();

// Reads digits at the beginning of `text` and takes them away. Nothing when there are none.
std::optional<std::uint64_t> take_number(std::string_view& text) {
  std::uint64_t value = 0;
  const auto [stop, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (failure != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return value;
}

}  // namespace

std::uint64_t multiple::limit(std::uint64_t value) const {
  const std::uint64_t whole = value / 1000, rest = value % 1000;
  if (thousandths != 0 && whole > most / thousandths) return most;
  const std::uint64_t product = whole * thousandths, more = rest * thousandths / 1000;
  return product > most - more ? most : product + more;
}

std::optional<multiple> parse_multiple(std::string_view text) {
  constexpr std::uint64_t largest = 1'000'000;
  const auto whole = take_number(text);
  if (!whole || *whole > largest) return std::nullopt;
  multiple read{*whole * 1000};
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    const std::size_t places = text.size();
    auto part = take_number(text);
    if (!part || places > 3) return std::nullopt;
    for (std::size_t i = places; i < 3; ++i) *part *= 10;
    read.thousandths += *part;
  }
  const bool fits = read.thousandths >= 1000 && read.thousandths <= largest * 1000;
  return text.empty() && fits ? std::optional(read) : std::nullopt;
}

std::optional<std::uint64_t> parse_bytes(std::string_view text) {
  const auto number = take_number(text);
  if (!number) return std::nullopt;
  const int shift = text.empty() ? 0 : text == "K" ? 10 : text == "M" ? 20 : text == "G" ? 30 : -1;
  if (shift < 0 || *number > most >> shift) return std::nullopt;
  return *number << shift;
}

}  // namespace kiv::fleet
