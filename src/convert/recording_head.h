#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "convert/recording_lines.h"

namespace kiv::convert {

// What a recording says before its first record.
struct recording_head {
  std::uint64_t format = 0;
  std::string recorder;  // "heaptrack 1.4.0"
  std::string command;   // of the recorded program; its line ends are blanks
  std::uint64_t page_size = 4096;
  bool is_raw = false;
  std::uint64_t lines = 0;  // that it takes

  static constexpr std::uint64_t newest_format = 3;
};

// False, with the reason in words, when the bytes are no recording of a format that can be read.
bool read_recording_head(const recording_source& source, recording_head& head,
                         std::string& refusal);

// The lines behind the head. Nothing, with the reason, when the file cannot be read again.
std::optional<recording_lines> lines_behind(const recording_head& head,
                                            const recording_source& source, std::string& error);

}  // namespace kiv::convert
