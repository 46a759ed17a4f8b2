#include "kivdb/command_line.h"

#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>

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

}  // namespace

int kivdb_main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  program_options program(
      "kivdb",
      "Answers questions from memory-allocation traces: who leaks, what made the peak, "
      "did it get worse.",
      "kivdb " KIVDB_VERSION,
      "A SOURCE is a run's directory, a header file, or a database: a file that `import`\n"
      "made, or clickhouse://[user[:password]@]host[:port]/database[?cluster=NAME].\n"
      "Exit status: 0 done, 1 wrong usage, 2 unreadable source or database, 3 a limit was passed,\n"
      "4 a limit was given for a run that is not complete.\n"
      "`kivdb COMMAND --help` has an example for each command.");
  for (const auto add :
       {add_report, add_tree, add_diff, add_html, add_export, add_import, add_trend, add_fleet,
        add_runs, add_forget, add_show, add_views, add_sql, add_schema, add_setup, add_prune}) {
    add(program);
  }
  if (const char* before = empty_argument(argc, argv)) {
    return complain("an argument is empty, after " + std::string(before), status_usage);
  }
  try {
    return program.run(argc, argv);
  } catch (const std::bad_alloc&) {
    return complain("out of memory");
  } catch (const std::exception& failure) {
    return complain(failure.what());
  }
}

}  // namespace kiv::db
