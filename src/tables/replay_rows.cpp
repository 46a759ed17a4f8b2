// The rows that are written while a trace is replayed; `memory` has a file of its own, and so have
// the tables about one process.

#include "replay/kiv_malid.h"
#include "replay/kiv_process.h"
#include "replay/kiv_query.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"
#include "tables/kiv_tables.h"
#include "tables/run_output.h"

namespace kiv {

namespace {

void append(std::string& text, std::string_view piece) { text += piece; }

void append(std::string& text, std::uint32_t number) {
  std::array<char, number_room> digits;
  text.append(digits.data(), put_decimal(digits.data(), number));
}

}  // namespace

// A string that keeps its room; valid until the next one.
template <class... Pieces>
const std::string& kiv_tables::marker_text(const Pieces&... pieces) {
  marker_text_.clear();
  (append(marker_text_, pieces), ...);
  return marker_text_;
}

void kiv_tables::trace_began() { write_marker_row("Record", "Begin", "Begin of measurement"); }

void kiv_tables::trace_ended() { write_marker_row("Record", "End", "End of measurement"); }

void kiv_tables::thousandth_record(std::uint32_t count) {
  write_marker_row("Record", "recs", marker_text("Record nr ", count));
}

void kiv_tables::program_marker(std::string_view text) { write_marker_row("Marker", "", text); }

void kiv_tables::id_reserved(const KivMalid& id) {
  write_marker_row("Malid", "Reserve", marker_text("Reserve Id ", id.id, " ", id.reserve_type));
}

void kiv_tables::id_gives_back(const KivMalid& id, kiv_type by) {
  const char* what = by == kiv_e_reset_id ? "Reset" : "Free";
  write_marker_row("MalId", what, marker_text(what, " Id ", id.id, " ", id.reserve_type));
}

void kiv_tables::write_marker_row(std::string_view type, std::string_view subtype,
                                  std::string_view text) {
  run_counters& counters = output_.context.counters;
  const std::uint64_t records = reader_.reserve_ids().global().rec.value;
  csv_row row(file(table_id::marker));
  row.raw(run_columns_).cols(counters.marker_cnt++, records, counters.last_record_count);
  row.raw(std::string_view(event_columns_).substr(run_columns_.size()));
  row.col(type).col(subtype).col(text.substr(0, 255)).end_line();
  counters.last_record_count = records;
}

void kiv_tables::memory_changed(const memory_change& change) { write_memory_row(change); }

// Which memory record ended which, and the type of the former.
void kiv_tables::write_freemem_row(std::uint64_t ended, std::uint64_t cause, kiv_type type) {
  csv_row row(file(table_id::freemem));
  row.raw(run_columns_).cols(ended, cause).end_line(static_cast<char>(type));
}

void kiv_tables::block_ended(block_handle /*block*/, const live_block& ended, std::uint64_t cause,
                             kiv_type by) {
  write_freemem_row(ended.record, cause, by);
}

// A resized block goes on under a record of its own.
void kiv_tables::block_resized(block_handle /*block*/, const memory_change& resized) {
  write_freemem_row(resized.linked_record, resized.record, resized.type);
}

void kiv_tables::heap_grew(const KivSbrk& event) {
  set_heap_columns();
  write_sbrk_row(event.type, event.addr, event.size);
}

void kiv_tables::heap_left_gap(const KivSbrkGap& event) {
  set_heap_columns();
  write_sbrk_row(event.type, event.l_sbrk, event.c_sbrk);
}

void kiv_tables::write_sbrk_row(kiv_type type, std::int64_t first, std::int64_t second) {
  const run_counters& counters = output_.context.counters;
  csv_row row(file(table_id::sbrk));
  row.raw(event_columns_).col(counters.record_count).col(static_cast<char>(type));
  row.cols(counters.rec_sbrk_count, counters.record_count);
  context_columns(row, reader_.current_context());
  row.cols(first, second).raw(heap_columns_).end_line();
}

void kiv_tables::allocator_reported(const KivMallInfo& event) {
  const run_counters& counters = output_.context.counters;
  csv_row row(file(table_id::arena));
  row.raw(event_columns_).cols(counters.record_count, counters.rec_arena_count);
  context_columns(row, reader_.current_context());
  row.cols(event.arena, event.used, event.freed).end_line();
}

void kiv_tables::query_ended(const KivQueryEvent& bracket) {
  csv_row row(file(table_id::queryevents));
  row.raw(run_columns_).col(bracket.sequence_number());
  row.raw(std::string_view(event_columns_).substr(run_columns_.size()));
  row.cols(bracket.qid(), bracket.linked_qid()).col(static_cast<char>(bracket.operation()));
  for (const KivQueryEvent::span* counted : {&bracket.sbrk_rows(), &bracket.memory_events()}) {
    row.cols(counted->start, counted->end);
  }
  context_columns(row, bracket.context());
  row.end_line();
}

void kiv_tables::process_started(const KivProcess& process) {
  write_flow_row(process, 2, 0, '>');
  const std::string& text = marker_text("Start: ", process.session_name(), " ", process.pid());
  write_marker_row("Process", "Start", text);
}

void kiv_tables::process_ended(const KivProcess& process) {
  const std::string& text = marker_text("End: ", process.session_name(), " ", process.pid());
  write_marker_row("Process", "End", text);
  write_arcs_rows(process);
  write_symbols_rows(process);
  write_flowdata_rows(process);
}

void kiv_tables::function_entered(const KivProcess& process, std::uint32_t depth,
                                  std::uint32_t arc) {
  write_flow_row(process, depth, arc, '>');
}

void kiv_tables::function_left(const KivProcess& process, std::uint32_t depth, std::uint32_t arc) {
  write_flow_row(process, depth, arc, '<');
}

void kiv_tables::write_flow_row(const KivProcess& process, std::uint32_t depth, std::uint32_t arc,
                                char direction) {
  csv_row row(file(table_id::flow));
  row.raw(run_columns_);
  row.cols(process.pid(), process.flow_counter(), depth,
           std::uint64_t{output_.context.counters.record_count} + 1, arc);
  row.end_line(direction);
}

}  // namespace kiv
