#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace kiv {

// What the command line sets for a run.
struct run_options {
  std::optional<std::string> header_file;                               // -H
  std::optional<std::string> directory;                                 // -R
  std::string description = "change this to a meaningful description";  // -T
  std::int32_t size_limit =
      0x40000000;       // -M: bytes after which a CSV file is continued in the next
  int debug_level = 0;  // -d, -D
  char data_sep = ';';  // -sd
  char fun_sep = ';';   // -sf
};

// What the command line asks for.
enum class command {
  nothing,  // no arguments
  run,
  usage,             // an unknown option
  usage_and_banner,  // an argument that is no option
  banner,            // -v, -V
  fail,              // -E without a file
};

struct command_line {
  command what = command::nothing;
  run_options options;
};

// Reads the arguments (without the program's name) from left to right. The first one that asks for
// anything but a run ends the reading. The value of an option is the next argument, whatever it
// looks like; an option whose value is missing changes nothing.
command_line parse_command_line(std::span<const char* const> args);

// The value of -M: a decimal number, times 2^30, 2^20 or 2^10 when the text holds a G, an M or a K,
// less 2048; in wrapping 32-bit arithmetic, so the limit may be negative.
std::int32_t parse_size_limit(const char* text);

// Prints the options on the standard output.
void usage();

}  // namespace kiv
