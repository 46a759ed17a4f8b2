#include "analysis/kiv_query.h"

#include "events/query_events.h"
#include "memory/kiv_reserve_id_db.h"
#include "reader/kiv_reader.h"
#include "settings.h"

namespace kiv {

namespace {

std::uint32_t linked_qid_of(const KivQueryOut& event) {
  return event.linked_qid == 0 ? event.qid : event.linked_qid;
}

}  // namespace

void KivQuery::complete(const KivQueryOut& event) {
  qid = event.qid;
  linked_qid = linked_qid_of(event);
}

void KivQuery::note_use(std::uint32_t type, const moment_text& now) {
  if (type == 'b') {
    first_use = now;
  } else if (type == 'c') {
    if (first_use.empty()) first_use = now;
    last_use = now;
  }
}

void KivQuery::check_times(const moment_text& end_time) {
  if (last_use.empty()) last_use = end_time;
  if (first_use.empty()) first_use = end_time;
}

void KivQuery::print(csv_row& row) const {
  row.col(pid).col(qid).col(linked_qid).col(start_time).col(first_use).col(last_use);
  row.raw(query).raw("<<>>");
}

void KivQueryEvent::span::close(std::uint64_t count) {
  end = count;
  if (start == end) start = end = 0;
}

KivQueryEvent::KivQueryEvent(kiv_reader* reader, std::uint32_t bracket_type, std::uint32_t number)
    : reader_(reader),
      type_(bracket_type),
      sbrk_rows_{counters.rec_sbrk_count, 0},
      memory_events_{reader->reserve_ids().global().rec.value, 0},
      call_(reader->cc_curr_bcall()),
      context_(reader, reader->current_pid(), reader->cc_curr_arc(), &call_),
      sequence_number_(number) {}

void KivQueryEvent::complete(const KivQueryOut& event) {
  qid_ = event.qid;
  linked_qid_ = linked_qid_of(event);
  sbrk_rows_.close(counters.rec_sbrk_count);
  memory_events_.close(reader_->reserve_ids().global().rec.value);
}

void KivQueryEvent::columns(csv_row& row) const {
  row.col(qid_).col(linked_qid_).col(static_cast<char>(type_));
  row.col(sbrk_rows_.start).col(sbrk_rows_.end);
  row.col(memory_events_.start).col(memory_events_.end);
  context_.columns(row);
}

}  // namespace kiv
