#pragma once

#include <cstdint>
#include <string>

namespace kiv {

// Local time of `secs` seconds after the epoch as "YYYY-MM-DD HH:MM:SS.mmm"; the milliseconds are
// nsecs / 1000000, at least three characters wide.
std::string time_text(std::int64_t secs, std::int64_t nsecs);

// Gives the same texts as time_text, but keeps that of the current minute and rewrites only its
// seconds and milliseconds: time stamps come by the million and mostly in order.
class minute_clock {
 public:
  // Valid until the next call.
  const std::string& text(std::uint32_t secs, std::uint32_t nsecs);

 private:
  void enter_minute_of(std::uint32_t secs);

  std::string text_;
  std::uint32_t minute_start_ = 0;
  bool usable_ =
      false;  // text_ holds the 60 seconds from minute_start_, which are one local minute
};

}  // namespace kiv
