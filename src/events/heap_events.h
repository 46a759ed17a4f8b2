#pragma once

#include <cstdint>
#include <ostream>

#include "events/kiv_event.h"

namespace kiv {

// A record about the heap itself.
class KivMemInfo : public KivMeasurement {
 public:
  using KivMeasurement::KivMeasurement;
  void setelems() override {}
  std::ostream& dumpinfo(std::ostream& os) const override { return os; }
};

// The heap grew.
class KivSbrk final : public KivMemInfo {
 public:
  explicit KivSbrk(kiv_reader* reader) : KivMemInfo(kiv_e_sbrk, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;
  // The columns of the `sbrk` row behind the record counter; raises the count of such rows.
  void columns(csv_row& row) const;
  std::ostream& dumpinfo(std::ostream& os) const override { return dump_columns(*this, os); }

  std::int64_t addr = 0;
  std::uint32_t size = 0;
};

// The heap grew behind a gap that somebody else holds.
class KivSbrkGap final : public KivMemInfo {
 public:
  explicit KivSbrkGap(kiv_reader* reader) : KivMemInfo(kiv_e_sbrk_gap, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;
  // As for KivSbrk.
  void columns(csv_row& row) const;
  std::ostream& dumpinfo(std::ostream& os) const override { return dump_columns(*this, os); }

  std::int64_t l_sbrk = 0;  // the last end of the heap
  std::int64_t c_sbrk = 0;  // the start of the new part
};

// What the native allocator says of itself.
class KivMallInfo final : public KivMemInfo {
 public:
  explicit KivMallInfo(kiv_reader* reader) : KivMemInfo(kiv_e_mallinfo, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;
  // The columns of the `arena` row behind the record counter.
  void columns(csv_row& row) const;
  std::ostream& dumpinfo(std::ostream& os) const override { return dump_columns(*this, os); }

  std::uint32_t arena = 0;
  std::uint32_t used = 0;
  std::uint32_t freed = 0;
};

}  // namespace kiv
