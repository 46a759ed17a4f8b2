#include "clickhouse/import_number.h"

#include <algorithm>
#include <chrono>
#include <random>

namespace kiv::clickhouse {
namespace {

constexpr std::int64_t numbers_of_a_microsecond = 1024;

std::int64_t by_clock(std::chrono::hours ago) {
  const auto moment = std::chrono::system_clock::now().time_since_epoch() - ago;
  return std::int64_t{std::chrono::duration_cast<std::chrono::microseconds>(moment).count()} *
         numbers_of_a_microsecond;
}

}  // namespace

std::int64_t next_import(std::int64_t newest) {
  std::random_device random;
  const auto number =
      by_clock({}) + static_cast<std::int64_t>(random() % std::uint32_t{numbers_of_a_microsecond});
  return std::max(number, newest + 1);
}

std::int64_t import_hours_ago(std::int64_t hours) { return by_clock(std::chrono::hours(hours)); }

}  // namespace kiv::clickhouse
