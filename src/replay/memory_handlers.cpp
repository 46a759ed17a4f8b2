// Records about memory: blocks, the heap, and the allocation ids that blocks belong to.

#include "replay/event_loop.h"
#include "replay/kiv_reserve_id_db.h"
#include "replay/memory_rules.h"
#include "replay/observer.h"

namespace kiv {

template <class Event>
void event_loop::book() {
  update_stats(reader_, read<Event>());
  count_record();
}

void event_loop::on_malloc_wf() { book<KivMallocWF>(); }

void event_loop::on_malloc_nf() { book<KivMallocNF>(); }

void event_loop::on_free() { book<KivFree>(); }

void event_loop::on_free_realloc() { book<KivFreeRealloc>(); }

void event_loop::on_sbrk() {
  const auto event = read<KivSbrk>();
  reader_.reserve_ids().update_sbrk(event.size);
  reader_.observer().heap_grew(event);
  ++counters_.rec_sbrk_count;
}

void event_loop::on_sbrk_gap() {
  const auto event = read<KivSbrkGap>();
  reader_.reserve_ids().update_gap(event.l_sbrk, event.c_sbrk);
  reader_.observer().heap_left_gap(event);
  ++counters_.rec_sbrk_count;
}

void event_loop::on_mallinfo() {
  reader_.observer().allocator_reported(read<KivMallInfo>());
  ++counters_.rec_arena_count;
}

void event_loop::on_reserve_id() {
  const auto event = decoded<KivReserveId>();
  if (diagnostics_.lists_records()) diagnostics_.listed(event, source_line(event.location));
  auto reserved = reader_.reserve_ids().make_id(event);
  KivMalid& id = *reserved;
  id.start_time = reader_.now();
  id.start_record = counters_.record_count;
  id.active = true;
  // A refused reservation is announced and classified all the same, so it lives until the end.
  const auto refused = reader_.reserve_ids().add_reserve_id(std::move(reserved));
  if (diagnostics_.tells_progress()) diagnostics_.id_reserved(id.id, id.reserve_type);
  reader_.observer().id_reserved(id);
  id.link_malloc_id();
}

void event_loop::on_reserve_id_colors() {
  reader_.reserve_ids().add_color_to_reserve_id(read<KivReserveIdColors>());
}

void event_loop::on_free_id() {
  const auto event = decoded<KivFreeId>();
  KivMalid& id = *reader_.reserve_ids().get_reserve_id(event.id);
  id.end_time = reader_.now();
  id.end_record = counters_.record_count;
  free_or_reset(event, id);
}

void event_loop::on_reset_id() {
  const auto event = decoded<KivResetId>();
  free_or_reset(event, *reader_.reserve_ids().get_reserve_id(event.id));
}

template <class Event>
void event_loop::free_or_reset(const Event& event, KivMalid& id) {
  if (diagnostics_.lists_records()) diagnostics_.listed(event, source_line(event.location));
  reader_.observer().id_gives_back(id, event.type);
  reader_.reserve_ids().free_mem(event.id, event.tot_size_wf, event.tot_size_nf, event.location,
                                 event.type == kiv_e_reset_id);
  reader_.observer().id_gave_back(id);
  count_record();
}

}  // namespace kiv
