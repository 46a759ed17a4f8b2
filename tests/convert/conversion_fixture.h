#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "convert/convert_recording.h"
#include "profile/profile.h"
#include "support/run_trace.h"

namespace kiv::test {

using outcome = convert::conversion_result::outcome;

// A recording, converted, and what the replay learns from its trace.
struct converted {
  outcome how = outcome::refused;
  std::string messages;  // one a line
  profile trace;         // when there is one
  bool has_trace = false;
};

// Converts in a directory of its own; the run is in "run".
class ConversionTest : public ::testing::Test {
 protected:
  converted convert(std::string_view recording, std::string_view raw = {});
  void write(std::string_view name, std::string_view bytes) const;

  temp_dir dir_;
};

// Blocks and bytes of all groups.
amount sum(const profile& of, figure which);
amount leaked(const profile& of);
// "made 2:30 leaked 1:20" (blocks:bytes) by "outer inner | line".
std::map<std::string, std::string> by_place(const profile& of);
// What keeps the trace from being complete, by name.
std::vector<std::string> losses(const profile& of);

}  // namespace kiv::test
