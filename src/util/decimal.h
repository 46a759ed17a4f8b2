#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>

namespace kiv {

inline bool is_digit(char c) { return c >= '0' && c <= '9'; }

// The longest decimal text of a 64-bit number, its sign included.
inline constexpr std::size_t max_decimal_length = 20;

namespace detail {

// The numbers below 1000 as text: numbers are cut into groups of three digits, so that one table
// look-up yields three characters. A group is stored as four bytes at once; the fourth is
// overwritten by what follows.
struct digit_group {
  std::array<char, 4> text{};    // without leading zeros; the last byte holds the length
  std::array<char, 4> padded{};  // always three digits
};

constexpr std::array<digit_group, 1000> make_digit_groups() {
  std::array<digit_group, 1000> groups{};
  for (unsigned number = 0; number < groups.size(); ++number) {
    digit_group& group = groups[number];
    group.padded = {static_cast<char>('0' + number / 100),
                    static_cast<char>('0' + number / 10 % 10),
                    static_cast<char>('0' + number % 10)};
    const unsigned length = number >= 100 ? 3 : number >= 10 ? 2 : 1;
    for (unsigned i = 0; i < length; ++i) group.text[i] = group.padded[3 - length + i];
    group.text[3] = static_cast<char>(length);
  }
  return groups;
}

inline constexpr std::array<digit_group, 1000> digit_groups = make_digit_groups();

inline char* put_leading(char* out, std::uint32_t below_1000) {
  const digit_group& group = digit_groups[below_1000];
  std::memcpy(out, group.text.data(), 4);
  return out + group.text[3];
}

inline char* put_padded(char* out, std::uint32_t below_1000) {
  std::memcpy(out, digit_groups[below_1000].padded.data(), 4);
  return out + 3;
}

// Kept out of line: most numbers are short, and a row has some eighty places that write one.
char* put_long_decimal(char* out, std::uint64_t number);
char* put_negative_decimal(char* out, std::int64_t number);

}  // namespace detail

// Writes the decimal text of `number` at `out` and returns its end. May touch up to four bytes
// behind that end, so `out` must have room for max_decimal_length + 4.
inline char* put_decimal(char* out, std::uint64_t number) {
  if (number < 1000) return detail::put_leading(out, static_cast<std::uint32_t>(number));
  return detail::put_long_decimal(out, number);
}

inline char* put_decimal(char* out, std::int64_t number) {
  if (number < 0) return detail::put_negative_decimal(out, number);
  return put_decimal(out, static_cast<std::uint64_t>(number));
}

template <std::integral T>
char* put_decimal(char* out, T number) {
  if constexpr (std::signed_integral<T>) {
    return put_decimal(out, static_cast<std::int64_t>(number));
  } else {
    return put_decimal(out, static_cast<std::uint64_t>(number));
  }
}

// Writes numbers with `separator` behind each. Needs number_room for each of them.
inline constexpr std::size_t number_room = max_decimal_length + 4;

template <std::integral... T>
char* put_columns(char* out, char separator, T... numbers) {
  ((out = put_decimal(out, numbers), *out++ = separator), ...);
  return out;
}

}  // namespace kiv
