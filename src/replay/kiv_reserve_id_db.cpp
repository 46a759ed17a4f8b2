#include "replay/kiv_reserve_id_db.h"

#include <utility>

#include "replay/kiv_process.h"
#include "replay/kiv_reader.h"
#include "trace/diagnostics.h"
#include "util/modular.h"

namespace kiv {

namespace {

constexpr std::uint64_t run_stat_divisor = 1000;

}  // namespace

KivReserveId_db::KivReserveId_db(kiv_reader& reader, bool row_books)
    : reader_(reader),
      row_books_(row_books),
      default_id_(reader, "Unknown Malloc ID"),
      global_(run_stat_divisor) {}

KivReserveId_db::malid_ptr KivReserveId_db::add_reserve_id(malid_ptr reserved) {
  const std::uint32_t id = reserved->id;
  if (ids_.find(id) != nullptr) {
    reader_.faults().id_reserved_twice(id);
    return reserved;
  }
  current_ = &ids_.assign(id, std::move(reserved));
  return nullptr;
}

void KivReserveId_db::add_color_to_reserve_id(const KivReserveIdColors& event) {
  if (current_ != nullptr) current_->set_color(event.color, event.colorname);
}

void KivReserveId_db::free_mem(std::uint32_t id, std::uint64_t tot_size_wf,
                               std::uint64_t tot_size_nf, std::int64_t location, bool reset) {
  KivMalid& record = *get_reserve_id(id);
  const KivStatSize<std::uint64_t>& wf = record.book.stat.cur_wf;
  const KivStatSize<std::uint64_t>& nf = record.book.stat.cur_nf;
  const bool wf_differs = tot_size_wf != wf.tot_size;
  const bool nf_differs = tot_size_nf != nf.tot_size;
  if (wf_differs) reader_.faults().wf_total_differs(id, tot_size_wf, wf.tot_size);
  if (nf_differs) reader_.faults().nf_total_differs(id, tot_size_nf, nf.tot_size);

  KivProcess& process = *reader_.cc_curr_proc();
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

std::uint64_t KivReserveId_db::count_free_of_id() {
  global_.rec.count_event();
  return global_.rec.value;
}

void KivReserveId_db::update_sbrk(std::uint32_t size) {
  sbrk_.total += size;
  ++sbrk_.count;
}

void KivReserveId_db::update_gap(std::int64_t last_end, std::int64_t new_start) {
  gap_.total += static_cast<std::uint64_t>(wrapping_sub(new_start, last_end));
  ++gap_.count;
}

void KivReserveId_db::check_end_time(const moment& time, std::uint64_t records) {
  ids_.for_each([&](KivMalid& id) {
    if (!id.active) return;
    id.end_time = time;
    id.end_record = records;
  });
}

}  // namespace kiv
