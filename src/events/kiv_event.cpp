#include "events/kiv_event.h"

#include "events/event_fields.h"

namespace kiv {

KivEvent::KivEvent(kiv_type type, kiv_reader* reader)
    : type_(type), next_width_(reader->layout().widths(type)), reader_(reader) {}

KivMeasurement::KivMeasurement(kiv_type type, kiv_reader* reader)
    : KivEvent(type, reader), context_(reader->capture_context()) {}

KivChangeContext::KivChangeContext(kiv_type type, kiv_reader* reader) : KivEvent(type, reader) {
  reader->context_changed();
}

}  // namespace kiv
