#include "util/decimal.h"

namespace kiv::detail {

namespace {

char* put_nine_padded(char* out, std::uint32_t below_billion) {
  const std::uint32_t thousands = below_billion / 1000;
  out = put_padded(out, thousands / 1000);
  out = put_padded(out, thousands % 1000);
  return put_padded(out, below_billion - thousands * 1000);
}

// Out of line for the sake of the shorter numbers' path.
[[gnu::noinline]] char* put_ten_digits_or_more(char* out, std::uint64_t number) {
  const std::uint64_t high = number / 1'000'000'000;
  return put_nine_padded(put_decimal(out, high),
                         static_cast<std::uint32_t>(number - high * 1'000'000'000));
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
  return put_ten_digits_or_more(out, number);
}

char* put_negative_decimal(char* out, std::int64_t number) {
  *out = '-';
  return put_decimal(out + 1, std::uint64_t{0} - static_cast<std::uint64_t>(number));
}

}  // namespace kiv::detail
