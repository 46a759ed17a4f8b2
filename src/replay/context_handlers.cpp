// Records about time, markers, symbols and SQL operations.

#include "replay/event_loop.h"
#include "replay/kiv_process.h"
#include "replay/kiv_query_db.h"
#include "replay/kiv_reserve_id_db.h"
#include "replay/observer.h"

namespace kiv {

void event_loop::on_timestamp() {
  reader_.set_now(read<KivTimeStamp>().when());
  reader_.observer().time_changed();
}

void event_loop::on_marker() { reader_.observer().program_marker(read<KivMarker>().words); }

void event_loop::on_symbol_new() { reader_.cc_curr_proc()->symbol_new(read<KivSymbolNew>()); }

void event_loop::on_symbol_dims() { reader_.cc_curr_proc()->symbol_dims(read<KivSymbolDims>()); }

void event_loop::on_symbol_dd_name() {
  reader_.cc_curr_proc()->symbol_dd_name(read<KivSymbolDdName>());
}

void event_loop::on_symbol_alloc() { reader_.cc_curr_proc()->symbol_alloc(read<KivSymbolAlloc>()); }

void event_loop::on_query_in() {
  const auto event = read<KivQueryIn>();
  reader_.context_changed();
  reader_.open_query_event(event.operation);
  reader_.observer().query_opened();
  switch (event.operation) {
    case 'p':
      new_query_ = std::make_unique<KivQuery>(event.query, reader_.current_pid(), reader_.now());
      pending_qid_ = 0;
      has_pending_query_ = true;
      break;
    case 'b':
    case 'c':
    case 'e':
    case 'f':
    case 's':
      break;
    default:
      diagnostics_.query_operation_unknown(event.operation);
      break;
  }
  if (diagnostics_.tells_progress()) {
    diagnostics_.query_entered(static_cast<char>(event.operation));
  }
}

void event_loop::complete_pending_query(const KivQueryOut& event) {
  if (new_query_ == nullptr) return;
  new_query_->complete(event);
  pending_qid_ = new_query_->qid;
  reader_.queries().add_query(std::move(new_query_), diagnostics_);
}

void event_loop::on_query_out() {
  const auto event = read<KivQueryOut>();
  reader_.context_changed();
  KivQueryEvent* bracket = reader_.current_query_event();
  if (bracket == nullptr || !has_pending_query_) {
    diagnostics_.query_not_open(event.qid);
    return;
  }
  complete_pending_query(event);
  bracket->complete(event, {counters_.rec_sbrk_count, reader_.reserve_ids().global().rec.value});
  if (KivQuery* query = reader_.queries().find_query(pending_qid_)) {
    query->note_use(bracket->operation(), reader_.now());
  }
  reader_.observer().query_ended(*bracket);
  if (diagnostics_.tells_progress()) {
    diagnostics_.query_left(static_cast<char>(bracket->operation()));
  }
  reader_.close_query_event();
}

}  // namespace kiv
