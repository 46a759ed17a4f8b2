#include "events/memory_events.h"

#include "analysis/kiv_process.h"
#include "events/event_fields.h"
#include "memory/kiv_reserve_id_db.h"
#include "memory/modular.h"

namespace kiv {

void KivMallocWF::setelems() {
  readelems(id, color, addr, addr_realloc, size, tot_size);
  readloc(location_text_, location_);
  realloc_source_ = 0;
  record_number_ = update_stats();
}

memory_figures KivMallocWF::figures() const {
  return {id, color, addr, size, tot_size, size, tot_size, addr_realloc, realloc_source_};
}

void KivMallocNF::setelems() {
  readelems(id, color, addr, size, tot_size);
  readloc(location_text_, location_);
  record_number_ = update_stats();
}

memory_figures KivMallocNF::figures() const {
  return {id, color, addr, size, tot_size, size, tot_size, 0, 0};
}

void KivFree::setelems() {
  readelems(id, color, addr, location_);
  record_number_ = update_stats();
}

memory_figures KivFree::figures() const {
  return {id,    color,     addr, -std::int64_t{size_}, -std::int64_t{tot_size_},
          size_, tot_size_, 0,    freed_record_};
}

void KivFreeRealloc::setelems() {
  readelems(id, color, addr, addr_free, size, tot_size, location_);
  record_number_ = update_stats();
}

memory_figures KivFreeRealloc::figures() const {
  return {id,   color,    addr,      size_change_,    tot_size_change_,
          size, tot_size, addr_free, previous_record_};
}

KivFRID::KivFRID(kiv_type type, kiv_reader* reader, KivReserveId& id, std::int64_t location)
    : KivMemory(type, reader), id_(id) {
  location_ = location;
}

void KivFRID::setelems() {
  record_number_ = reader()->reserve_ids().count_free_of_id();
  books_ = find_memory_books(id_, *reader()->cc_curr_proc());
}

memory_figures KivFRID::figures() const {
  const auto& live = id_.book.stat;
  memory_figures row;
  row.id = id_.id;
  row.size = wrapping_add(live.cur_wf.size, live.cur_nf.size);
  row.tot_size = wrapping_add(live.cur_wf.tot_size, live.cur_nf.tot_size);
  row.size_change = static_cast<std::int64_t>(wrapping_sub(std::uint64_t{0}, row.size));
  row.tot_size_change = static_cast<std::int64_t>(wrapping_sub(std::uint64_t{0}, row.tot_size));
  return row;
}

}  // namespace kiv
