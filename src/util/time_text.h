#pragma once

#include <cstdint>
#include <string>

#include "util/moment.h"

namespace kiv {

// Local time as "YYYY-MM-DD HH:MM:SS.mmm"; the milliseconds are nsecs / 1000000, at least three
// characters wide.
std::string time_text(const moment& when);

// Gives the same texts as time_text, but keeps that of the current minute and rewrites only its
// seconds and milliseconds: time stamps come by the million and mostly in order.
class minute_clock {
 public:
  // Valid until the next call.
  const std::string& text(const moment& when);

 private:
  void enter_minute_of(std::int64_t secs);

  std::string text_;
  std::int64_t minute_start_ = 0;
  bool usable_ =
      false;  // text_ holds the 60 seconds from minute_start_, which are one local minute
};

}  // namespace kiv
