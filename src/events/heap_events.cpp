#include "events/heap_events.h"

#include "events/event_fields.h"
#include "memory/kiv_reserve_id_db.h"

namespace kiv {

void KivSbrk::setelems() { readelems(addr, size); }

void KivSbrk::columns(csv_row& row) const {
  row.col(static_cast<char>(type())).col(counters.rec_sbrk_count++).col(counters.record_count);
  context().columns(row);
  row.col(addr).col(size);
  reader()->reserve_ids().heap_columns(row);
}

void KivSbrkGap::setelems() { readelems(l_sbrk, c_sbrk); }

void KivSbrkGap::columns(csv_row& row) const {
  row.col(static_cast<char>(type())).col(counters.rec_sbrk_count++).col(counters.record_count);
  context().columns(row);
  row.col(l_sbrk).col(c_sbrk);
  reader()->reserve_ids().heap_columns(row);
}

void KivMallInfo::setelems() { readelems(arena, used, freed); }

void KivMallInfo::columns(csv_row& row) const {
  row.col(counters.rec_arena_count);
  context().columns(row);
  row.col(arena).col(used).col(freed);
}

}  // namespace kiv
