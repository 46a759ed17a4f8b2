#pragma once

#include <cstdint>
#include <string_view>
#include <tuple>

#include "trace/kiv_type.h"

namespace kiv {

// An allocation id comes into being.
struct KivReserveId {
  static constexpr kiv_type type = kiv_e_reserve_id;
  auto numbers() { return std::tie(id, default_size, location, nr_colors); }
  auto& text() { return reserve_type; }

  std::uint32_t id = 0;
  std::uint32_t default_size = 0;
  std::int64_t location = 0;
  std::uint32_t nr_colors = 0;
  std::string_view reserve_type;  // what the id is for
};

// Names a colour of the allocation id reserved last.
struct KivReserveIdColors {
  static constexpr kiv_type type = kiv_e_reserve_id_colors;
  auto numbers() { return std::tie(color); }
  auto& text() { return colorname; }

  std::uint32_t color = 0;
  std::string_view colorname;
};

// An allocation id gives back all its memory: it dies by a free and lives on after a reset. The
// totals are what the writer holds to be live under the id.
struct KivFreeOrReset {
  auto numbers() { return std::tie(id, location, tot_size_wf, tot_size_nf); }

  std::uint32_t id = 0;
  std::int64_t location = 0;
  std::uint32_t tot_size_wf = 0;
  std::uint32_t tot_size_nf = 0;
};

struct KivFreeId : KivFreeOrReset {
  static constexpr kiv_type type = kiv_e_free_id;
};

struct KivResetId : KivFreeOrReset {
  static constexpr kiv_type type = kiv_e_reset_id;
};

}  // namespace kiv
