#include "output/decimal.h"

namespace kiv::detail {

namespace {

char* put_nine_padded(char* out, std::uint32_t below_billion) {
  out = put_padded(out, below_billion / 1'000'000);
  out = put_padded(out, below_billion / 1000 % 1000);
  return put_padded(out, below_billion % 1000);
}

}  // namespace

char* put_long_decimal(char* out, std::uint64_t number) {
  if (number < 1'000'000) {
    const auto low = static_cast<std::uint32_t>(number);
    return put_padded(put_leading(out, low / 1000), low % 1000);
  }
  if (number < 1'000'000'000) {
    const auto low = static_cast<std::uint32_t>(number);
    out = put_leading(out, low / 1'000'000);
    out = put_padded(out, low / 1000 % 1000);
    return put_padded(out, low % 1000);
  }
  const std::uint64_t high = number / 1'000'000'000;
  return put_nine_padded(put_decimal(out, high),
                         static_cast<std::uint32_t>(number % 1'000'000'000));
}

char* put_negative_decimal(char* out, std::int64_t number) {
  *out = '-';
  return put_decimal(out + 1, std::uint64_t{0} - static_cast<std::uint64_t>(number));
}

}  // namespace kiv::detail
