#pragma once

#include <cstdint>
#include <string>

namespace kiv {

// A call into the Hosk interpreter; empty when none is under way.
struct hosk_call {
  std::string name;
  std::int64_t symbol = 0;
  std::string arguments;
};

// Where the current process stood at a moment: its call context. What the books say of the process
// and of the arc is looked up when it is shown.
struct KivEventContext {
  std::uint32_t pid = 0;
  std::uint32_t arc = 0;            // 0 when the call stack is empty
  const hosk_call* call = nullptr;  // looked at, not copied
};

}  // namespace kiv
