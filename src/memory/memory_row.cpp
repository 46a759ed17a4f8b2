// The row of the `memory` table, the widest and by far the most frequent of all.

#include "events/memory_events.h"
#include "memory/kiv_reserve_id_db.h"
#include "reader/kiv_reader.h"

namespace kiv {

namespace {

// Stands for the bundle of a colour that has none.
template <class T>
const KivStat<T>& or_zero(const KivStat<T>* bundle) {
  static const KivStat<T> zero{T{color_stat_divisor}};
  return bundle == nullptr ? zero : *bundle;
}

void section(csv_row& row, const char* label, const auto&... counter) {
  row.col(label).counters(counter...);
}

}  // namespace

// Several memory events mostly follow one another in one context, so its text is kept.
void KivMemory::context_columns(csv_row& row) const {
  if (const std::string_view kept = reader()->kept_context(); !kept.empty()) {
    row.raw(kept);
    return;
  }
  const std::size_t start = row.length();
  context().columns(row);
  reader()->keep_context(row.text_from(start));
}

void KivMemory::columns(csv_row& row) const {
  const KivReserveId_db& ids = reader()->reserve_ids();
  const KivStat<std::uint64_t>& global = ids.global();

  row.col(static_cast<char>(type()));
  global.rec.columns(row);
  context_columns(row);

  const memory_figures event = figures();
  row.cols(location_, event.id, event.color, event.addr, event.size_change, event.tot_size_change,
           event.size, event.tot_size, event.second_addr, event.linked_record);

  const KivStat<std::uint64_t>& color = or_zero(books_.color);
  section(row, "color", color.cur_wf, color.peak_wf, color.cur_mem, color.rec);

  const KivStat<std::uint64_t>& malid = books_.reserve_id->book.stat;
  section(row, "malid", malid.cur_wf, malid.peak_wf, malid.cur_mem, malid.rec, malid.sum_wf);

  const KivStat<std::int64_t>& process = *books_.process.whole;
  section(row, "process", process.cur_wf, process.peak_wf, process.cur_mem, process.rec,
          process.sum_wf);

  const KivStat<std::int64_t>& process_malid = *books_.process.id;
  section(row, "process m", process_malid.cur_wf, process_malid.cur_mem, process_malid.rec);

  const KivStat<std::int32_t>& process_color = or_zero(books_.process.color);
  section(row, "process c", process_color.cur_wf, process_color.cur_mem, process_color.rec);

  section(row, "global", global.cur_wf, global.peak_wf, global.cur_nf);

  row.col("sbrk");
  ids.heap_columns(row);
}

void KivMemory::write_row() const {
  csv_row row(reader()->table(replay_table::memory));
  row.raw(reader()->event_columns());
  columns(row);
  row.end_line();
}

}  // namespace kiv
