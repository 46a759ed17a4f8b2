#pragma once

#include <array>
#include <cstdint>

#include "events/kiv_type.h"

namespace kiv {

class kiv_hdr;

// The field widths of all record types, taken from the header's definitions once per trace, so that
// a field's width is an array access.
class record_layout {
 public:
  static constexpr unsigned max_fields = 8;  // no record type reads more than seven

  record_layout() = default;
  explicit record_layout(const kiv_hdr& header);

  // In bytes; 0 for a field or a type that the header does not define.
  std::uint32_t width(kiv_type type, unsigned field) const {
    return field < max_fields ? widths_[static_cast<unsigned>(type)][field] : 0;
  }

 private:
  std::array<std::array<std::uint32_t, max_fields>, kiv_type_limit> widths_{};
};

}  // namespace kiv
