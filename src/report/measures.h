#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "profile/profile.h"

namespace kiv::report {

// What blocks are grouped by in a list.
enum class group_key : std::uint8_t { id, color, line, function, path, process, query };
inline constexpr std::size_t key_count = 7;

// What is summed up in a list.
enum class measure : std::uint8_t { leaked, peak, live, allocated, temporary };
inline constexpr std::size_t measure_count = 5;

// The words of the command line and of JSON, in the order of the enumerations.
inline constexpr std::array<std::string_view, key_count> key_names = {
    "id", "color", "line", "function", "path", "process", "query"};
inline constexpr std::array<std::string_view, measure_count> measure_names = {
    "leaked", "peak", "live", "allocated", "temporary"};

inline std::string_view name_of(group_key key) { return key_names[static_cast<std::size_t>(key)]; }
inline std::string_view name_of(measure of) { return measure_names[static_cast<std::size_t>(of)]; }
std::optional<group_key> find_key(std::string_view name);
std::optional<measure> find_measure(std::string_view name);

// For people: "source line", "live at the end".
std::string_view title_of(group_key key);
std::string_view title_of(measure of);

struct list_choice {
  measure of;
  group_key by;
};

inline amount measured(const block_group& group, measure of) {
  switch (of) {
    case measure::leaked:
      return group.leaked();
    case measure::peak:
      return group[figure::at_peak];
    case measure::live:
      return group[figure::live];
    case measure::allocated:
      return group[figure::made];
    case measure::temporary:
      return group[figure::temporary];
  }
  return {};
}

// An amount with an obligation to free and one without, apart.
struct split_amount {
  amount with_free, no_free;

  amount sum() const { return with_free + no_free; }
  void add(bool is_no_free, const amount& more) { (is_no_free ? no_free : with_free) += more; }
  split_amount& operator+=(const split_amount& other) {
    with_free += other.with_free;
    no_free += other.no_free;
    return *this;
  }
};

}  // namespace kiv::report
