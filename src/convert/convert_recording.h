#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "util/moment.h"

namespace kiv::convert {

// A recording to be made a trace of.
struct conversion {
  std::string recording;  // file
  std::string raw;        // the raw recording it was made from; empty: none is used
  std::string directory;  // of the run
  std::string run_id;
  std::uint32_t pid = 0;
  std::optional<moment> start;  // else when the recording's file was made
};

struct conversion_result {
  enum class outcome {
    complete,
    incomplete,  // a trace of what could be read, left open as that of a killed process is
    refused,     // nothing was written
    not_written,
  };
  outcome how = outcome::complete;
  std::vector<std::string> messages;  // why it is not complete, and what else is to be known
};

// `progress` is called every few thousand events with the bytes of the file that were read.
conversion_result convert_recording(const conversion& wanted,
                                    const std::function<void(std::uint64_t)>& progress);

}  // namespace kiv::convert
