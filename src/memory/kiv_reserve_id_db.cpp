#include "memory/kiv_reserve_id_db.h"

#include <array>
#include <iostream>
#include <utility>

#include "analysis/kiv_process.h"
#include "analysis/kiv_process_db.h"
#include "events/id_events.h"
#include "events/memory_events.h"
#include "memory/modular.h"
#include "reader/kiv_reader.h"

namespace kiv {

namespace {

constexpr std::uint64_t run_stat_divisor = 1000;

live_block block_of(const auto& allocation) {
  return {allocation.addr,     allocation.record_number(), allocation.size,
          allocation.tot_size, allocation.color,           allocation.location_text()};
}

}  // namespace

KivReserveId_db::KivReserveId_db(kiv_reader* reader)
    : reader_(reader),
      default_id_(std::make_unique<KivReserveId>(reader, "Unknown Malloc ID")),
      global_(run_stat_divisor) {
  set_heap_columns();
}

KivReserveId_db::reserve_id_ptr KivReserveId_db::add_reserve_id(reserve_id_ptr reserved) {
  if (ids_.find(reserved->id) != nullptr) {
    std::cout << "Error mal_id " << reserved->id << " already found! \n";
    return reserved;
  }
  const std::uint32_t id = reserved->id;
  current_ = &ids_.assign(id, std::move(reserved));
  return nullptr;
}

void KivReserveId_db::add_color_to_reserve_id(const KivReserveIdColors& event) {
  if (current_ != nullptr) current_->set_color(event.color, event.colorname);
}

bool KivReserveId_db::totals_differ(const char* kind, const char* field, std::uint32_t id,
                                    std::uint64_t recorded, std::uint64_t actual) const {
  if (recorded == actual) return false;
  std::cout << "free_mem inconsistency " << kind << " in malid " << id << field << recorded
            << " vs actual " << actual << '\n';
  return true;
}

void KivReserveId_db::free_mem(std::uint32_t id, std::uint64_t tot_size_wf,
                               std::uint64_t tot_size_nf, std::int64_t location, bool reset) {
  KivReserveId& record = *get_reserve_id(id);
  const KivStatSize<std::uint64_t>& wf = record.book.stat.cur_wf;
  const KivStatSize<std::uint64_t>& nf = record.book.stat.cur_nf;
  const bool wf_differs = totals_differ("WF", " tot_size_wf ", id, tot_size_wf, wf.tot_size);
  const bool nf_differs = totals_differ("NF", " tot_size_nf ", id, tot_size_nf, nf.tot_size);

  KivProcess& process = *reader_->cc_curr_proc();
  process.release_wf(id, wf.size, wf.tot_size);
  process.release_nf(id, nf.size, nf.tot_size);
  global_.cur_wf.sub_sizes(wf.size, wf.tot_size);
  global_.cur_mem.sub_sizes(wf.size, wf.tot_size);
  global_.cur_nf.sub_sizes(nf.size, nf.tot_size);
  global_.cur_mem.sub_sizes(nf.size, nf.tot_size);

  const bool verbose = wf_differs || nf_differs;
  if (reset) {
    record.reset_id(verbose, location);
  } else {
    record.free_id(verbose, location);
  }
}

bool KivReserveId_db::add_memory(const KivMallocWF& event) {
  return event.reserve_id().with_free.add_memory(block_of(event));
}

bool KivReserveId_db::add_memory(const KivMallocNF& event) {
  return event.reserve_id().no_free.add_memory(block_of(event));
}

std::uint64_t KivReserveId_db::count_free_of_id() {
  global_.rec.count_event();
  return global_.rec.value;
}

void KivReserveId_db::update_sbrk(std::uint32_t size) {
  sbrk_.total += size;
  ++sbrk_.count;
  set_heap_columns();
}

void KivReserveId_db::update_gap(std::int64_t last_end, std::int64_t new_start) {
  gap_.total += static_cast<std::uint64_t>(wrapping_sub(new_start, last_end));
  ++gap_.count;
  set_heap_columns();
}

void KivReserveId_db::set_heap_columns() {
  std::array<char, 4 * number_room> text;
  const char* end =
      put_columns(text.data(), data_sep, sbrk_.total, sbrk_.count, gap_.total, gap_.count);
  heap_columns_.assign(text.data(), static_cast<std::size_t>(end - text.data()));
}

void KivReserveId_db::check_end_time(const moment_text& time, std::uint64_t records) {
  ids_.for_each([&](KivReserveId& id) {
    if (!id.active) return;
    id.end_time = time;
    id.end_record = records;
  });
}

void KivReserveId_db::dump_db(std::ostream& os, std::string_view run_columns) const {
  ids_.for_each_ascending([&](const KivReserveId& id) {
    csv_row row(os);
    row.raw(run_columns);
    id.columns(row);
    row.end_line();
  });
}

void KivReserveId_db::dump_db_colors(std::ostream& os, std::string_view run_columns) const {
  ids_.for_each_ascending([&](const KivReserveId& id) {
    for (std::uint32_t color = 0; color < id.color_count(); ++color) {
      csv_row row(os);
      row.raw(run_columns).cols(id.id, color).col(id.color_name(color)).end_line();
    }
  });
}

}  // namespace kiv
