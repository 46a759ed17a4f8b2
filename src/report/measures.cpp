#include "report/measures.h"

#include <algorithm>

namespace kiv::report {
namespace {

template <class Enum, std::size_t count>
std::optional<Enum> find(const std::array<std::string_view, count>& names, std::string_view name) {
  const auto* at = std::ranges::find(names, name);
  if (at == names.end()) return std::nullopt;
  return static_cast<Enum>(at - names.begin());
}

}  // namespace

std::optional<group_key> find_key(std::string_view name) {
  return find<group_key>(key_names, name);
}

std::optional<measure> find_measure(std::string_view name) {
  return find<measure>(measure_names, name);
}

std::string_view title_of(group_key key) {
  constexpr std::array<std::string_view, key_count> titles = {
      "allocation id", "colour",  "source line",  "function",
      "call path",     "process", "SQL statement"};
  return titles[static_cast<std::size_t>(key)];
}

std::string_view title_of(measure of) {
  constexpr std::array<std::string_view, measure_count> titles = {
      "leaked", "live at the peak", "live at the end", "allocated", "temporary"};
  return titles[static_cast<std::size_t>(of)];
}

}  // namespace kiv::report
