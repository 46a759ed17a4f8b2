// Records about memory: blocks, the heap, and the allocation ids that blocks belong to.

#include <iostream>

#include "events/heap_events.h"
#include "events/id_events.h"
#include "events/memory_events.h"
#include "memory/kiv_reserve_id_db.h"
#include "output/csv_row.h"
#include "reader/event_loop.h"

namespace kiv {

void event_loop::on_malloc_wf() {
  KivMallocWF event(&reader_);
  decode(event);
  reader_.reserve_ids().add_memory(event);
  event.write_row();
  count_record();
}

void event_loop::on_malloc_nf() {
  KivMallocNF event(&reader_);
  decode(event);
  reader_.reserve_ids().add_memory(event);
  event.write_row();
  count_record();
}

void event_loop::on_free() {
  KivFree event(&reader_);
  decode(event);
  event.write_row();
  count_record();
}

void event_loop::on_free_realloc() {
  KivFreeRealloc event(&reader_);
  decode(event);
  event.write_row();
  count_record();
}

template <class Event>
void event_loop::write_sbrk_row(const Event& event) {
  csv_row row(reader_.table(replay_table::sbrk));
  row.raw(reader_.event_columns()).col(counters.record_count);
  event.columns(row);
  row.end_line();
}

void event_loop::on_sbrk() {
  KivSbrk event(&reader_);
  decode(event);
  reader_.reserve_ids().update_sbrk(event.size);
  write_sbrk_row(event);
}

void event_loop::on_sbrk_gap() {
  KivSbrkGap event(&reader_);
  decode(event);
  reader_.reserve_ids().update_gap(event.l_sbrk, event.c_sbrk);
  write_sbrk_row(event);
}

void event_loop::on_mallinfo() {
  KivMallInfo event(&reader_);
  decode(event);
  csv_row row(reader_.table(replay_table::arena));
  row.raw(reader_.event_columns()).col(counters.record_count);
  event.columns(row);
  row.end_line();
  ++counters.rec_arena_count;
}

void event_loop::on_reserve_id() {
  auto reserved = reader_.reserve_ids().read_reserve_id();
  KivReserveId& id = *reserved;
  if (debug_level > 1) id.traceevent(std::cerr);
  id.start_time = reader_.now();
  id.start_record = counters.record_count;
  id.active = true;
  // A refused reservation is announced and classified all the same, so it lives until the end.
  const auto refused = reader_.reserve_ids().add_reserve_id(std::move(reserved));
  const std::string& text = marker_text("Reserve Id ", id.id, " ", id.reserve_type);
  if (debug_level > 0) std::cerr << text + "\n";
  reader_.WriteMarker("Malid", "Reserve", reader_.now(), text);
  id.link_malloc_id();
}

void event_loop::on_reserve_id_colors() {
  KivReserveIdColors event(&reader_);
  decode(event);
  reader_.reserve_ids().add_color_to_reserve_id(event);
}

void event_loop::on_free_id() {
  KivFreeId event(&reader_);
  decode(event);
  KivReserveId& id = *reader_.reserve_ids().get_reserve_id(event.id);
  id.end_time = reader_.now();
  id.end_record = counters.record_count;
  free_or_reset(event, false);
}

void event_loop::on_reset_id() {
  KivResetId event(&reader_);
  decode(event);
  free_or_reset(event, true);
}

void event_loop::free_or_reset(const KivFreeOrReset& event, bool reset) {
  KivReserveId_db& ids = reader_.reserve_ids();
  const KivReserveId& id = *ids.get_reserve_id(event.id);
  const char* what = reset ? "Reset" : "Free";
  reader_.WriteMarker("MalId", what, reader_.now(),
                      marker_text(what, " Id ", id.id, " ", id.reserve_type));
  ids.free_mem(event.id, event.tot_size_wf, event.tot_size_nf, event.location, reset);
  count_record();
}

}  // namespace kiv
