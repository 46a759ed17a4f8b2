#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>

namespace kiv {

inline std::uint16_t byte_swap(std::uint16_t value) { return __builtin_bswap16(value); }
inline std::uint32_t byte_swap(std::uint32_t value) { return __builtin_bswap32(value); }
inline std::uint64_t byte_swap(std::uint64_t value) { return __builtin_bswap64(value); }

// The unsigned number that stands at `bytes` in the given byte order.
template <std::unsigned_integral T>
T load(const unsigned char* bytes, bool little_endian) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  constexpr bool host_is_little = std::endian::native == std::endian::little;
  return little_endian == host_is_little ? value : byte_swap(value);
}

// Writes a number at `bytes` in the given byte order.
template <std::unsigned_integral T>
void store_number(unsigned char* bytes, T value, bool little_endian) {
  constexpr bool host_is_little = std::endian::native == std::endian::little;
  if (little_endian != host_is_little) value = byte_swap(value);
  std::memcpy(bytes, &value, sizeof value);
}

}  // namespace kiv
