// Records about time, markers, symbols and SQL operations.

#include <fmt/format.h>

#include <iostream>

#include "analysis/kiv_process.h"
#include "analysis/kiv_query_db.h"
#include "events/query_events.h"
#include "events/symbol_events.h"
#include "events/time_marker_events.h"
#include "output/csv_row.h"
#include "reader/event_loop.h"

namespace kiv {

void event_loop::on_timestamp() {
  KivTimeStamp event(&reader_);
  decode(event);
  reader_.set_now(event.time_text());
}

void event_loop::on_marker() {
  KivMarker event(&reader_);
  decode(event);
  reader_.WriteMarker("Marker", "", reader_.now(), event.text);
}

void event_loop::on_symbol_new() {
  KivSymbolNew event(&reader_);
  decode(event);
  reader_.cc_curr_proc()->symbol_new(event);
}

void event_loop::on_symbol_dims() {
  KivSymbolDims event(&reader_);
  decode(event);
  reader_.cc_curr_proc()->symbol_dims(event);
}

void event_loop::on_symbol_dd_name() {
  KivSymbolDdName event(&reader_);
  decode(event);
  reader_.cc_curr_proc()->symbol_dd_name(event);
}

void event_loop::on_symbol_alloc() {
  KivSymbolAlloc event(&reader_);
  decode(event);
  reader_.cc_curr_proc()->symbol_alloc(event);
}

void event_loop::on_query_in() {
  KivQueryIn event(&reader_);
  decode(event);
  reader_.open_query_event(event.type);
  switch (event.type) {
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
      std::cout << "QueryIn: unknown type '" << event.type << "'\n";
      break;
  }
  if (debug_level > 0) std::cerr << fmt::format("QueryIn: {}\n", static_cast<char>(event.type));
}

void event_loop::complete_pending_query(const KivQueryOut& event) {
  if (new_query_ == nullptr) return;
  new_query_->complete(event);
  pending_qid_ = new_query_->qid;
  reader_.queries().add_query(std::move(new_query_));
}

void event_loop::on_query_out() {
  KivQueryOut event(&reader_);
  decode(event);
  KivQueryEvent* bracket = reader_.current_query_event();
  if (bracket == nullptr || !has_pending_query_) {
    std::cout << "QueryOut: no open query for qid " << event.qid << '\n';
    return;
  }
  complete_pending_query(event);
  bracket->complete(event);
  csv_row row(reader_.table(replay_table::queryevents));
  row.raw(reader_.run_columns()).col(bracket->sequence_number()).col(reader_.now());
  bracket->columns(row);
  row.end_line();
  if (KivQuery* query = reader_.queries().find_query(pending_qid_)) {
    query->note_use(bracket->type(), reader_.now());
  }
  if (debug_level > 0)
    std::cerr << fmt::format("QueryOu: {}\n", static_cast<char>(bracket->type()));
  reader_.close_query_event();
}

}  // namespace kiv
