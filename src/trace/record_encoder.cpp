#include "trace/record_encoder.h"

namespace kiv {

record_encoder::record_encoder(const record_layout& layout, bool little_endian)
    : record_bytes(little_endian), layout_(layout) {
  for (const record_type& type : record_types) {
    const std::uint32_t* width = layout.widths(type.type);
    bool full = true;
    for_each_field(type.fields, [&](std::string_view, char kind) {
      full = full && (kind == 's' || *width == (kind == 'p' ? 8U : 4U));
      ++width;
    });
    has_full_widths_.at(static_cast<std::size_t>(type.type)) = full;
  }
}

}  // namespace kiv
