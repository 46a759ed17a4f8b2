#include "replay/kiv_query.h"

#include "trace/query_events.h"

namespace kiv {

namespace {

std::uint32_t linked_qid_of(const KivQueryOut& event) {
  return event.linked_qid == 0 ? event.qid : event.linked_qid;
}

void close(KivQueryEvent::span& counted, std::uint64_t count) {
  counted.end = count;
  if (counted.start == counted.end) counted = {};
}

}  // namespace

void KivQuery::complete(const KivQueryOut& event) {
  qid = event.qid;
  linked_qid = linked_qid_of(event);
}

void KivQuery::note_use(std::uint32_t operation, const moment& now) {
  if (operation == 'b') {
    first_use = now;
  } else if (operation == 'c') {
    if (!first_use) first_use = now;
    last_use = now;
  }
}

void KivQuery::check_times(const moment& end_time) {
  if (!last_use) last_use = end_time;
  if (!first_use) first_use = end_time;
}

KivQueryEvent::KivQueryEvent(std::uint32_t operation, std::uint32_t number,
                             const KivEventContext& context, const query_counts& counts)
    : operation_(operation),
      sbrk_rows_{counts.sbrk_rows, 0},
      memory_events_{counts.memory_events, 0},
      call_(*context.call),
      context_{context.pid, context.arc, &call_},
      sequence_number_(number) {}

void KivQueryEvent::complete(const KivQueryOut& event, const query_counts& counts) {
  qid_ = event.qid;
  linked_qid_ = linked_qid_of(event);
  close(sbrk_rows_, counts.sbrk_rows);
  close(memory_events_, counts.memory_events);
}

}  // namespace kiv
