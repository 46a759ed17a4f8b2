#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "memory/kiv_reserve_id.h"
#include "memory/number_table.h"
#include "memory/object_pool.h"

namespace kiv {

class KivMallocWF;
class KivMallocNF;
class KivReserveIdColors;

// Sum and number of heap growths or heap gaps.
struct heap_total {
  std::uint64_t total = 0;  // bytes, modulo 2^64
  std::uint32_t count = 0;
};

// The book of allocation ids: number -> id. A number that was not reserved has the default id.
class KivReserveId_db {
 public:
  explicit KivReserveId_db(kiv_reader* reader);

  // Never null.
  KivReserveId* get_reserve_id(std::uint32_t id) const {
    KivReserveId* reserved = ids_.find(id);
    return reserved == nullptr ? default_id_.get() : reserved;
  }

  using reserve_id_ptr = object_pool<KivReserveId>::pointer;
  // Decodes the record at the reader's position; the id is in no book yet.
  reserve_id_ptr read_reserve_id() { return pool_.make(reader_); }
  // Makes the id current. A number that is reserved already keeps its id, with a message on the
  // standard output; the refused id comes back.
  reserve_id_ptr add_reserve_id(reserve_id_ptr reserved);
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

  // Store a block under its id. False when its address is live already.
  bool add_memory(const KivMallocWF& event);
  bool add_memory(const KivMallocNF& event);

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
  // The four heap columns: total and count of growths, total and count of gaps.
  void heap_columns(csv_row& row) const { row.raw(heap_columns_); }

  // Closes every id that is still active at the end of the trace.
  void check_end_time(const moment_text& time, std::uint64_t records);
  void dump_db(std::ostream& os, std::string_view run_columns) const;
  void dump_db_colors(std::ostream& os, std::string_view run_columns) const;

  KivStat<std::uint64_t>& global() { return global_; }
  const KivStat<std::uint64_t>& global() const { return global_; }

 private:
  void set_heap_columns();
  bool totals_differ(const char* kind, const char* field, std::uint32_t id, std::uint64_t recorded,
                     std::uint64_t actual) const;

  kiv_reader* reader_;
  object_pool<KivReserveId> pool_;
  object_pool<process_malid_stat> process_books_;
  number_table<reserve_id_ptr> ids_;
  std::unique_ptr<KivReserveId> default_id_;
  KivReserveId* current_ = nullptr;  // the id reserved last
  KivStat<std::uint64_t> global_;
  heap_total sbrk_;
  heap_total gap_;
  std::string
      heap_columns_;  // as text: every row of `memory` ends with them, few records change them
};

}  // namespace kiv
