#include "kivtrace/fork_count.h"

#include <pthread.h>

namespace kiv {

std::atomic<std::uint32_t> fork_count{0};

bool count_forks() {
  static const bool counted = pthread_atfork(nullptr, nullptr, [] {
                                fork_count.fetch_add(1, std::memory_order_relaxed);
                              }) == 0;
  return counted;
}

}  // namespace kiv
