#pragma once

#include <cstdint>

#include "replay/kiv_malid.h"
#include "util/number_table.h"
#include "util/object_pool.h"

namespace kiv {

struct KivReserveIdColors;

// Sum and number of heap growths or heap gaps.
struct heap_total {
  std::uint64_t total = 0;  // bytes, modulo 2^64
  std::uint32_t count = 0;
};

// The book of allocation ids: number -> id. A number that was not reserved has the default id.
class KivReserveId_db {
 public:
  // `row_books`: whether every process keeps a book of each id, and colours have theirs.
  KivReserveId_db(kiv_reader& reader, bool row_books);

  // Never null.
  KivMalid* get_reserve_id(std::uint32_t id) const {
    KivMalid* reserved = ids_.find(id);
    return reserved == nullptr ? &default_id_ : reserved;
  }
  bool knows(std::uint32_t id) const { return ids_.find(id) != nullptr; }

  using malid_ptr = object_pool<KivMalid>::pointer;
  // An id that is in no book yet.
  malid_ptr make_id(const KivReserveId& event) { return pool_.make(reader_, event); }
  // Makes the id current. A number that is reserved already keeps its id, and that is said; the
  // refused id comes back.
  malid_ptr add_reserve_id(malid_ptr reserved);
  // Names a colour of the id reserved last; ignored when there is none.
  void add_color_to_reserve_id(const KivReserveIdColors& event);

  // Carry out a free or reset record. The totals are the writer's, compared with the books.
  void free_mem(std::uint32_t id, std::uint64_t tot_size_wf, std::uint64_t tot_size_nf,
                std::int64_t location, bool reset);

  using process_book_ptr = object_pool<process_malid_stat>::pointer;
  // A book of the id for a process, with as many colours as the id has now.
  process_book_ptr make_process_book(std::uint32_t id) {
    return process_books_.make(get_reserve_id(id)->color_count());
  }

  bool keeps_row_books() const { return row_books_; }

  // Book an event in the run-wide bundle; return its memory record number.
  std::uint64_t update_wf(std::uint32_t size, std::uint32_t tot_size) {
    global_.add_wf(size, tot_size);
    return global_.rec.value;
  }
  std::uint64_t update_nf(std::uint32_t size, std::uint32_t tot_size) {
    global_.add_nf(size, tot_size);
    return global_.rec.value;
  }
  std::uint64_t update_fr(std::uint32_t size, std::uint32_t tot_size) {
    global_.add_fr(size, tot_size);
    return global_.rec.value;
  }
  // The record number of a free or reset, which books no sizes here.
  std::uint64_t count_free_of_id();

  void update_sbrk(std::uint32_t size);
  void update_gap(std::int64_t last_end, std::int64_t new_start);
  const heap_total& sbrk() const { return sbrk_; }
  const heap_total& gap() const { return gap_; }

  // Closes every id that is still active at the end of the trace.
  void check_end_time(const moment& time, std::uint64_t records);
  template <class Action>
  void for_each_ascending(Action action) const {
    ids_.for_each_ascending(action);
  }

  KivStat<std::uint64_t>& global() { return global_; }
  const KivStat<std::uint64_t>& global() const { return global_; }

 private:
  kiv_reader& reader_;
  object_pool<KivMalid> pool_;
  object_pool<process_malid_stat> process_books_;
  const bool row_books_;
  number_table<malid_ptr> ids_;
  mutable KivMalid default_id_;
  KivMalid* current_ = nullptr;  // the id reserved last
  KivStat<std::uint64_t> global_;
  heap_total sbrk_;
  heap_total gap_;
};

}  // namespace kiv
