#include "util/memory_pages.h"

#include <sys/mman.h>

#include <new>

namespace kiv {

memory_pages::memory_pages(std::size_t size, std::size_t room) : size_(size + room) {
  if (size_ == 0) return;
  void* const pages =
      mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) throw std::bad_alloc();
  // In small pages a large file costs more in page faults than in decoding. Only advice: a system
  // that does not take it gives small ones. The room would be there at once as a part of a large
  // page.
  madvise(pages, size, MADV_HUGEPAGE);
  bytes_ = static_cast<unsigned char*>(pages);
}

memory_pages::~memory_pages() {
  if (bytes_ != nullptr) munmap(bytes_, size_);
}

}  // namespace kiv
