#include "events/query_events.h"

#include "events/event_fields.h"

namespace kiv {

void KivQueryIn::setelems() {
  readelem(qid);
  readelem(type);
  readelem(query);
}

void KivQueryOut::setelems() {
  readelem(qid);
  readelem(linked_qid);
}

}  // namespace kiv
