#pragma once

#include <atomic>
#include <cstdint>

namespace kiv {

// How many forks are between this process and the one that asked first: a process that has another
// count than its trace did not open it. Handlers of fork() take no argument, so it stands outside.
// False when the system has no memory for such a handler.
bool count_forks();
extern std::atomic<std::uint32_t> fork_count;

}  // namespace kiv
