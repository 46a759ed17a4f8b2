#include "trace/record_layout.h"

namespace kiv {

record_layout::record_layout(std::span<const record_definition> definitions) {
  for (const record_definition& type : definitions) {
    auto& widths = widths_[static_cast<unsigned char>(type.tag) % kiv_type_limit];
    for (unsigned field = 0; field < max_fields && field < type.fields.size(); ++field) {
      widths[field] = static_cast<std::uint32_t>(type.fields[field].width);
    }
  }
}

}  // namespace kiv
