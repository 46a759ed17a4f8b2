// The row of the `memory` table, the widest and by far the most frequent of all.

#include "replay/kiv_malid.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"
#include "replay/memory_books.h"
#include "tables/kiv_tables.h"

namespace kiv {

namespace {

// Stands for the bundle of a colour that has none.
template <class T>
const KivStat<T>& or_zero(const KivStat<T>* bundle) {
  static const KivStat<T> zero{T{color_stat_divisor}};
  return bundle == nullptr ? zero : *bundle;
}

template <class T>
char* put(char* out, char separator, const KivStatSize<T>& sum) {
  return put_columns(out, separator, sum.size, sum.tot_size, sum.count);
}

template <class T>
char* put(char* out, char separator, const KivStatPeak<T>& sizes) {
  return put_columns(out, separator, sizes.size, sizes.tot_size);
}

template <class T>
char* put(char* out, char separator, const KivStatRec<T>& events) {
  return put_columns(out, separator, events.value, events.value / events.divisor);
}

void counters(csv_row& row, const auto&... counter) {
  constexpr std::size_t most_columns = 3;
  row.cols_by(sizeof...(counter) * most_columns, [&](char* out, char separator) {
    ((out = put(out, separator, counter)), ...);
    return out;
  });
}

void section(csv_row& row, std::string_view label, const auto&... counter) {
  row.col(label);
  counters(row, counter...);
}

}  // namespace

void kiv_tables::write_memory_row(const memory_change& change) {
  const memory_books& books = *change.books;
  const KivStat<std::uint64_t>& global = reader_.reserve_ids().global();

  csv_row row(file(table_id::memory));
  row.raw(event_columns_).col(static_cast<char>(change.type));
  counters(row, global.rec);
  current_context_columns(row);
  row.cols(change.location, change.id, change.color, change.addr, change.size_change,
           change.tot_size_change, change.size, change.tot_size, change.second_addr,
           change.linked_record);

  const KivStat<std::uint64_t>& color = or_zero(books.color);
  section(row, "color", color.cur_wf, color.peak_wf, color.cur_mem, color.rec);

  const KivStat<std::uint64_t>& malid = books.id->book.stat;
  section(row, "malid", malid.cur_wf, malid.peak_wf, malid.cur_mem, malid.rec, malid.sum_wf);

  const KivStat<std::int64_t>& process = *books.process.whole;
  section(row, "process", process.cur_wf, process.peak_wf, process.cur_mem, process.rec,
          process.sum_wf);

  const KivStat<std::int64_t>& process_malid = *books.process.id;
  section(row, "process m", process_malid.cur_wf, process_malid.cur_mem, process_malid.rec);

  const KivStat<std::int32_t>& process_color = or_zero(books.process.color);
  section(row, "process c", process_color.cur_wf, process_color.cur_mem, process_color.rec);

  section(row, "global", global.cur_wf, global.peak_wf, global.cur_nf);

  row.col("sbrk").raw(heap_columns_).end_line();
}

}  // namespace kiv
