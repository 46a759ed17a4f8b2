#include "trace/record_layout.h"

#include <algorithm>
#include <numeric>

namespace kiv {

record_layout::record_layout(std::span<const record_definition> definitions) {
  for (const record_definition& type : definitions) {
    auto& widths = widths_[static_cast<unsigned char>(type.tag) % kiv_type_limit];
    for (unsigned field = 0; field < max_fields && field < type.fields.size(); ++field) {
      widths[field] = static_cast<std::uint32_t>(type.fields[field].width);
    }
  }
}

std::uint64_t record_layout::most_bytes_of_numbers() const {
  std::uint64_t most = 0;
  for (const auto& widths : widths_) {
    most = std::max(most, std::accumulate(widths.begin(), widths.end(), std::uint64_t{0}));
  }
  return most;
}

}  // namespace kiv
