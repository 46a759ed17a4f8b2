#pragma once

#include "events/kiv_event.h"
#include "reader/kiv_reader.h"

namespace kiv {

// Included by the decoders alone, so that a field read is inlined into them.

inline void KivEvent::readelem(std::uint32_t& value) { reader_->readbytes(readelemsize(), value); }
inline void KivEvent::readelem(std::int32_t& value) { reader_->readbytes(readelemsize(), value); }
inline void KivEvent::readelem(std::uint64_t& value) { reader_->readbytes(readelemsize(), value); }
inline void KivEvent::readelem(std::int64_t& value) { reader_->readbytes(readelemsize(), value); }
inline void KivEvent::readelem(std::string& text) { reader_->readbytes(readelemsize(), text); }

template <class... Numbers>
void KivEvent::readelems(Numbers&... numbers) {
  if (reader_->files().cursor().read_all(next_width_, numbers...)) [[likely]] {
    next_width_ += sizeof...(numbers);
  } else {
    (readelem(numbers), ...);
  }
}

inline void KivEvent::readloc(std::uint32_t& text_index, std::int64_t& location) {
  reader_->readloc(readelemsize(), text_index, location);
}

}  // namespace kiv
