#include "util/time_text.h"

#include <fmt/format.h>

#include <ctime>

namespace kiv {
namespace {

constexpr std::size_t seconds_at = 17;  // of the two digits in "YYYY-MM-DD HH:MM:SS.mmm"
constexpr std::size_t millis_at = 20;

std::tm local_time(std::int64_t secs) {
  static_assert(sizeof(std::time_t) == 8, "times reach beyond 2038");
  const std::time_t time = secs;
  std::tm local{};
  localtime_r(&time, &local);
  return local;
}

}  // namespace

std::string time_text(const moment& when) {
  const std::tm local = local_time(when.secs);
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:03}", local.tm_year + 1900,
                     local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                     when.nsecs / 1'000'000);
}

const std::string& minute_clock::text(const moment& when) {
  const bool in_kept_minute =
      usable_ && when.secs >= minute_start_ && when.secs - minute_start_ < 60;
  if (!in_kept_minute) enter_minute_of(when.secs);
  const std::int64_t millis = when.nsecs / 1'000'000;
  if (!usable_ || millis < 0 || millis > 999) {
    usable_ = false;
    text_ = time_text(when);
    return text_;
  }
  const auto put_digit = [this](std::size_t at, std::uint32_t digit) {
    text_[at] = static_cast<char>('0' + digit);
  };
  const auto second = static_cast<std::uint32_t>(when.secs - minute_start_);
  const auto thousandths = static_cast<std::uint32_t>(millis);
  put_digit(seconds_at, second / 10);
  put_digit(seconds_at + 1, second % 10);
  put_digit(millis_at, thousandths / 100);
  put_digit(millis_at + 1, thousandths / 10 % 10);
  put_digit(millis_at + 2, thousandths % 10);
  return text_;
}

// Some zones had offsets that are no whole minutes, and some count leap seconds.
void minute_clock::enter_minute_of(std::int64_t secs) {
  usable_ = false;
  if (secs < 0) return;
  minute_start_ = secs - secs % 60;
  const std::tm first = local_time(minute_start_);
  const std::tm last = local_time(minute_start_ + 59);
  usable_ = first.tm_sec == 0 && last.tm_sec == 59 && first.tm_min == last.tm_min &&
            first.tm_hour == last.tm_hour && first.tm_mday == last.tm_mday;
  if (usable_) text_ = time_text({minute_start_, 0});
}

}  // namespace kiv
