#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "events/kiv_event.h"

namespace kiv {

class KivTimeStamp final : public KivEvent {
 public:
  explicit KivTimeStamp(kiv_reader* reader) : KivEvent(kiv_e_timestamp, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;
  std::ostream& dumptime(std::ostream& os) const { return os << time_text(); }

  // Local time to the millisecond; valid until the next time stamp is decoded.
  std::string_view time_text() const { return time_text_; }

  std::uint32_t tv_secs = 0;  // since the epoch, up to the year 2106
  std::uint32_t tv_nsecs = 0;

 private:
  std::string_view time_text_;
};

inline std::ostream& operator<<(std::ostream& os, const KivTimeStamp& stamp) {
  return stamp.dumptime(os);
}

// A text that the traced program's user put into the trace.
class KivMarker final : public KivEvent {
 public:
  explicit KivMarker(kiv_reader* reader) : KivEvent(kiv_e_marker, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::string text;
};

}  // namespace kiv
