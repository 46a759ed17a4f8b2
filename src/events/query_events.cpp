#include "events/query_events.h"

#include "events/event_fields.h"

namespace kiv {

void KivQueryIn::setelems() {
  readelems(qid, type);
  readelem(query);
}

void KivQueryOut::setelems() { readelems(qid, linked_qid); }

}  // namespace kiv
