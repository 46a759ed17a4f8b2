#include "util/large_pages.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#endif

namespace kiv {

#if defined(__GLIBC__) && defined(MADV_HUGEPAGE)

namespace {

// Addresses, not memory: what the heap does not use costs nothing.
constexpr int reserved_bytes = 256 << 20;
// Larger blocks have mappings of their own, which go back to the system when they are freed.
constexpr int largest_in_heap = 1 << 20;
constexpr std::uintptr_t small_page = 4096;

// The next address that the heap takes, at the beginning of a page.
char* end_of_heap() {
  char* const end = static_cast<char*>(sbrk(0));
  return end + (small_page - reinterpret_cast<std::uintptr_t>(end) % small_page) % small_page;
}

}  // namespace

// The advice is given for addresses, so the heap must have them first: it takes them in one piece
// at the next block that does not fit, and keeps them.
void prefer_large_pages_for_heap() {
  char* const begin = end_of_heap();
  mallopt(M_MMAP_THRESHOLD, largest_in_heap);
  mallopt(M_TRIM_THRESHOLD, reserved_bytes);
  mallopt(M_TOP_PAD, reserved_bytes);
  void* volatile block = std::malloc(std::size_t{512} << 10);
  std::free(block);
  mallopt(M_TOP_PAD, 128 << 10);
  char* const end = end_of_heap();
  if (end > begin) madvise(begin, static_cast<std::size_t>(end - begin), MADV_HUGEPAGE);
}

#else

void prefer_large_pages_for_heap() {}

#endif

}  // namespace kiv
