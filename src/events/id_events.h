#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "events/kiv_event.h"

namespace kiv {

// Names a colour of the allocation id reserved last.
class KivReserveIdColors final : public KivContext {
 public:
  explicit KivReserveIdColors(kiv_reader* reader) : KivContext(kiv_e_reserve_id_colors, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t color = 0;
  std::string colorname;
};

// An allocation id gives back all its memory: it dies by a free and lives on after a reset. The
// totals are what the writer holds to be live under the id.
class KivFreeOrReset : public KivContext {
 public:
  using KivContext::KivContext;
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t id = 0;
  std::uint32_t location_text = 0;  // in the book of source locations
  std::int64_t location = 0;
  std::uint32_t tot_size_wf = 0;
  std::uint32_t tot_size_nf = 0;
};

class KivFreeId final : public KivFreeOrReset {
 public:
  explicit KivFreeId(kiv_reader* reader) : KivFreeOrReset(kiv_e_free_id, reader) {}
};

class KivResetId final : public KivFreeOrReset {
 public:
  explicit KivResetId(kiv_reader* reader) : KivFreeOrReset(kiv_e_reset_id, reader) {}
};

}  // namespace kiv
