#pragma once

#include <tuple>

#include "trace/record_cursor.h"
#include "trace/record_layout.h"

namespace kiv {

// Reads the fields of a record whose tag and size are read. Every field's width is the header's, so
// one decoder serves writers with other integer and pointer sizes. A field that has no width, or
// one that its member does not take, leaves the member as it is. Texts look into the file's bytes:
// they hold until the next record is read.
template <class Event>
Event decode(record_cursor& cursor, const record_layout& layout) {
  Event event;
  [[maybe_unused]] const std::uint32_t* width = layout.widths(Event::type);
  std::apply(
      [&](auto&... number) {
        if constexpr (sizeof...(number) > 0) {
          if (!cursor.read_all(width, number...)) (cursor.read(*width++, number), ...);
        }
      },
      event.numbers());
  if constexpr (requires { event.text(); }) event.text() = cursor.read_text();
  return event;
}

}  // namespace kiv
