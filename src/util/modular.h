#pragma once

#include <concepts>
#include <type_traits>

namespace kiv {

// The books count modulo 2^n, in signed types too. Signed overflow is undefined, so the sums are
// formed in the unsigned type of the same width.

template <std::integral T>
constexpr T wrapping_add(T a, T b) {
  using U = std::make_unsigned_t<T>;
  return static_cast<T>(static_cast<U>(a) + static_cast<U>(b));
}

template <std::integral T>
constexpr T wrapping_sub(T a, T b) {
  using U = std::make_unsigned_t<T>;
  return static_cast<T>(static_cast<U>(a) - static_cast<U>(b));
}

}  // namespace kiv
