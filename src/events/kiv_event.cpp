#include "events/kiv_event.h"

#include "events/event_fields.h"

namespace kiv {

KivMeasurement::KivMeasurement(kiv_type type, kiv_reader* reader)
    : KivEvent(type, reader), context_(reader->capture_context()) {}

}  // namespace kiv
