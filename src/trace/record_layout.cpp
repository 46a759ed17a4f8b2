#include "trace/record_layout.h"

#include "trace/kiv_hdr.h"

namespace kiv {

record_layout::record_layout(const kiv_hdr& header) {
  for (int type = 0; type < kiv_type_limit; ++type) {
    for (unsigned field = 0; field < max_fields; ++field) {
      widths_[static_cast<unsigned>(type)][field] =
          static_cast<std::uint32_t>(header.get_elem_size(type, static_cast<int>(field)));
    }
  }
}

record_layout::record_layout(std::span<const record_definition> definitions) {
  for (const record_definition& type : definitions) {
    auto& widths = widths_[static_cast<unsigned char>(type.tag) % kiv_type_limit];
    for (unsigned field = 0; field < max_fields && field < type.fields.size(); ++field) {
      widths[field] = static_cast<std::uint32_t>(type.fields[field].width);
    }
  }
}

}  // namespace kiv
