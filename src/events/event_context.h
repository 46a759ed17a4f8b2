#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "output/csv_row.h"

namespace kiv {

class kiv_reader;

// A call into the Hosk interpreter; empty when none is under way.
struct hosk_call {
  std::string name;
  std::int64_t symbol = 0;
  std::string arguments;
};

// The call context of a measurement event. Which process, arc and Hosk call is captured when the
// record is read; what the books say of them is looked up when the row is written.
class KivEventContext {
 public:
  // `call` is looked at, not copied: it must stay as it is until the row is written.
  KivEventContext(kiv_reader* reader, std::uint32_t pid, std::uint32_t arc, const hosk_call* call)
      : pid_(pid), arc_(arc), call_(call), reader_(reader) {}

  std::uint32_t pid() const { return pid_; }

  // The context columns: process, arc, flow counter, depth of the stack, caller and callee of the
  // arc, Hosk call, query bracket.
  void columns(csv_row& row) const;
  std::ostream& dumpcontext(std::ostream& os) const;

 private:
  std::uint32_t pid_;
  std::uint32_t arc_;  // 0 when the call stack was empty
  const hosk_call* call_;
  kiv_reader* reader_;
};

inline std::ostream& operator<<(std::ostream& os, const KivEventContext& context) {
  return context.dumpcontext(os);
}

}  // namespace kiv
