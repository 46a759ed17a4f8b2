#include "kiv/options.h"

#include <cstdlib>
#include <iostream>
#include <string_view>

namespace kiv {

std::int32_t parse_size_limit(const char* text) {
  const std::string_view all = text;
  const auto holds = [all](char unit) { return all.find(unit) != std::string_view::npos; };
  const unsigned shift = holds('G') ? 30 : holds('M') ? 20 : holds('K') ? 10 : 0;
  const auto number = static_cast<std::uint32_t>(std::strtoll(text, nullptr, 10));
  return static_cast<std::int32_t>((number << shift) - 2048U);
}

command_line parse_command_line(std::span<const char* const> args) {
  command_line line;
  run_options& options = line.options;
  const auto ends_with = [&line](command what) {
    line.what = what;
    return line;
  };
  std::size_t next = 0;
  const auto value = [&args, &next] { return next < args.size() ? args[next++] : nullptr; };
  const auto read_text = [&value](auto& target) {
    if (const char* text = value()) target = text;
  };
  const auto read_separator = [&value](char& target) {
    const char* text = value();
    if (text && text[0] != '\0') target = text[0];
  };

  while (next < args.size()) {
    const char* arg = args[next++];
    if (arg[0] != '-') return ends_with(command::usage_and_banner);
    switch (arg[1]) {
      case 'H':
        read_text(options.header_file);
        break;
      case 'R':
        read_text(options.directory);
        break;
      case 'T':
        read_text(options.description);
        break;
      case 'M':
        if (const char* text = value()) options.size_limit = parse_size_limit(text);
        break;
      case 'E':  // kept for old scripts; the error stream is redirected by the shell
        if (!value()) return ends_with(command::fail);
        break;
      case 'd':
        options.debug_level = 1;
        break;
      case 'D':
        options.debug_level = 2;
        break;
      case 's':
        if (arg[2] == 'd') read_separator(options.data_sep);
        if (arg[2] == 'f') read_separator(options.fun_sep);
        break;
      case 'v':
      case 'V':
        return ends_with(command::banner);
      default:
        return ends_with(command::usage);
    }
    line.what = command::run;
  }
  return line;
}

void usage() {
  std::cout << "-H <header file> header file to use to read in kiv trace\n"
               "-E <error file> file place debug output into (redirects stderr/cerr)\n"
               "-vV prints version\n"
               "-d  debug level 1\n"
               "-D  debug level 2\n"
               "-sd <sep> record separation character to used in the csv output files ','\n"
               "-sf <sep> seperation between object and function (default '@')\n"
               "-R <directory> directory containing kiv trace files\n"
               "-T \"description of run\"\n";
}

}  // namespace kiv
