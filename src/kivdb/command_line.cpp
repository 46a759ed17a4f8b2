#include "kivdb/command_line.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <new>
#include <string_view>
#include <vector>

#include "kivdb/commands.h"
#include "kivdb/messages.h"

namespace kiv::db {
namespace {

// The option or place of an argument that has no value, such as an unset variable of a script
// leaves; null when there is none.
const char* empty_argument(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument.empty()) return argv[i - 1];
    if (argument.starts_with("--") && argument.find('=') == argument.size() - 1) return argv[i];
  }
  return nullptr;
}

int run_command(const std::vector<command>& commands) {
  for (const auto& [app, run] : commands) {
    if (app->parsed()) return run();
  }
  return complain("a command is missing; `kivdb --help` lists them", status_usage);
}

}  // namespace

int kivdb_main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  CLI::App program(
      "Answers questions from memory-allocation traces: who leaks, what made the peak, "
      "did it get worse.",
      "kivdb");
  program.require_subcommand(0, 1);  // so that an unknown word is named in the message
  program.set_version_flag("--version", std::string("kivdb " KIVDB_VERSION));
  program.footer(
      "A SOURCE is a run's directory, a header file, or a database that `import` made.\n"
      "Exit status: 0 done, 1 wrong usage, 2 unreadable source or database, 3 a limit was passed,\n"
      "4 a limit was given for a run that is not complete.\n"
      "`kivdb COMMAND --help` has an example for each command.");
  const std::vector<command> commands = {
      add_report(program), add_tree(program),  add_diff(program), add_html(program),
      add_import(program), add_trend(program), add_runs(program), add_forget(program),
      add_show(program),   add_views(program), add_sql(program)};

  if (const char* before = empty_argument(argc, argv)) {
    return complain("an argument is empty, after " + std::string(before), status_usage);
  }
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& stop) {
    return program.exit(stop) == 0 ? finish_output() : status_usage;
  }
  try {
    return run_command(commands);
  } catch (const std::bad_alloc&) {
    return complain("out of memory");
  }
}

}  // namespace kiv::db
