#include "events/time_marker_events.h"

#include "events/event_fields.h"

namespace kiv {

void KivTimeStamp::setelems() {
  readelems(tv_secs, tv_nsecs);
  time_text_ = reader()->local_time(tv_secs, tv_nsecs);
}

void KivMarker::setelems() { readelem(text); }

}  // namespace kiv
