#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "trace/kiv_type.h"
#include "trace/record_types.h"

namespace kiv {

// The field widths of all record types, taken from a header's definitions once per trace, so that a
// field's width is an array access.
class record_layout {
 public:
  static constexpr unsigned max_fields = 8;  // no record type reads more than seven

  record_layout() = default;
  // Of the definitions that a header is made from; kiv_hdr::layout() gives that of one that was
  // read.
  explicit record_layout(std::span<const record_definition> definitions);

  void set_width(kiv_type type, unsigned field, std::uint32_t bytes) {
    widths_[static_cast<unsigned>(type)][field] = bytes;
  }

  // What the numbers of a record take at most, in bytes, whatever its type.
  std::uint64_t most_bytes_of_numbers() const;

  // The widths of a type's fields in bytes, max_fields of them; 0 for a field or a type that the
  // header does not define.
  const std::uint32_t* widths(kiv_type type) const {
    return widths_[static_cast<unsigned>(type)].data();
  }

 private:
  std::array<std::array<std::uint32_t, max_fields>, kiv_type_limit> widths_{};
};

}  // namespace kiv
