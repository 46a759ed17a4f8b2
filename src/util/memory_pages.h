#pragma once

#include <cstddef>
#include <utility>

namespace kiv {

// Memory straight from the system, not set: all of it goes back at the end, which a large block of
// the heap does not promise. Throws std::bad_alloc when there is none.
class memory_pages {
 public:
  memory_pages() = default;
  // `room`: bytes behind those, for content that is a little longer later.
  explicit memory_pages(std::size_t size, std::size_t room = 0);
  memory_pages(memory_pages&& other) noexcept
      : bytes_(std::exchange(other.bytes_, nullptr)), size_(std::exchange(other.size_, 0)) {}
  memory_pages& operator=(memory_pages&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(size_, other.size_);
    return *this;
  }
  ~memory_pages();

  unsigned char* data() const { return bytes_; }
  std::size_t size() const { return size_; }  // with the room

 private:
  unsigned char* bytes_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace kiv
