#pragma once

#include <cstdint>
#include <ostream>

#include "events/kiv_event.h"
#include "memory/memory_books.h"

namespace kiv {

class KivReserveId;

// What a `memory` row says of the event itself; each kind of event fills it from its own members.
struct memory_figures {
  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::int64_t addr = 0;
  std::int64_t size_change = 0;      // of live memory, by what the program asked for
  std::int64_t tot_size_change = 0;  // the same by what the allocator took
  std::uint64_t size = 0;
  std::uint64_t tot_size = 0;
  std::int64_t second_addr = 0;
  std::uint64_t linked_record = 0;  // the memory record that this one refers to
};

// A record that allocates, resizes or gives back memory. Decoding books it.
class KivMemory : public KivMeasurement {
 public:
  using KivMeasurement::KivMeasurement;

  std::ostream& dumpinfo(std::ostream& os) const override { return dump_columns(*this, os); }
  // The columns of the `memory` row behind run id, pid and time.
  void columns(csv_row& row) const;
  // Writes the whole row.
  void write_row() const;

  // The run's count of memory events after this one; 0 for a reallocation of a missing block.
  std::uint64_t record_number() const { return record_number_; }
  std::uint32_t location_text() const { return location_text_; }
  KivReserveId& reserve_id() const { return *books_.reserve_id; }

 protected:
  virtual memory_figures figures() const = 0;
  void context_columns(csv_row& row) const;
  void trace_address(std::ostream& os, std::uint32_t id, std::uint32_t color,
                     std::int64_t addr) const;

  std::uint32_t location_text_ = 0;  // in the book of source locations; of allocations only
  std::int64_t location_ = 0;
  std::uint64_t record_number_ = 0;
  memory_books books_;
};

// Allocation that the program will free block by block.
class KivMallocWF final : public KivMemory {
 public:
  explicit KivMallocWF(kiv_reader* reader) : KivMemory(kiv_e_malloc_wf, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::int64_t addr = 0;
  std::uint32_t size = 0;
  std::uint32_t tot_size = 0;
  std::int64_t addr_realloc = 0;  // the live block that this one replaces, 0 when none

 private:
  std::uint64_t update_stats();
  memory_figures figures() const override;

  std::uint64_t realloc_source_ = 0;  // record number of the block at addr_realloc
};

// Allocation that is given back with its id only.
class KivMallocNF final : public KivMemory {
 public:
  explicit KivMallocNF(kiv_reader* reader) : KivMemory(kiv_e_malloc_nf, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::int64_t addr = 0;
  std::uint32_t size = 0;
  std::uint32_t tot_size = 0;

 private:
  std::uint64_t update_stats();
  memory_figures figures() const override;
};

class KivFree final : public KivMemory {
 public:
  explicit KivFree(kiv_reader* reader) : KivMemory(kiv_e_free, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::int64_t addr = 0;

 private:
  std::uint64_t update_stats();
  memory_figures figures() const override;

  std::uint32_t size_ = 0;  // of the block freed; 0 when none was live
  std::uint32_t tot_size_ = 0;
  std::uint64_t freed_record_ = 0;
};

// Resizes a block in place.
class KivFreeRealloc final : public KivMemory {
 public:
  explicit KivFreeRealloc(kiv_reader* reader) : KivMemory(kiv_e_free_realloc, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t id = 0;
  std::uint32_t color = 0;
  std::int64_t addr = 0;
  std::int64_t addr_free = 0;
  std::uint32_t size = 0;
  std::uint32_t tot_size = 0;

 private:
  std::uint64_t update_stats();
  memory_figures figures() const override;

  std::int32_t size_change_ = 0;
  std::int32_t tot_size_change_ = 0;
  std::uint64_t previous_record_ = 0;
};

// The row of an allocation id that is freed or reset; never read from a trace.
class KivFRID final : public KivMemory {
 public:
  // `type`: of the record that caused it.
  KivFRID(kiv_type type, kiv_reader* reader, KivReserveId& id, std::int64_t location);
  // Reads nothing; takes the next memory record number.
  void setelems() override;
  void traceevent(std::ostream& os) const override;

 private:
  memory_figures figures() const override;

  KivReserveId& id_;
};

}  // namespace kiv
