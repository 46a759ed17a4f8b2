#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/messages.h"
#include "kivdb/open_runs.h"
#include "kivdb/shared_options.h"

namespace kiv::db {
namespace {

struct forget_arguments {
  std::string file;
  std::vector<std::string> runs;
  output_options output;
};

int run_forget(const forget_arguments& arguments) {
  std::string error;
  const auto database = open_target(arguments.file, target_use::forget, error);
  if (!database || !database->forget(arguments.runs, error)) {
    return complain_about(arguments.file, error);
  }
  report::table_printer table(std::cout, {{"forgotten", "forgotten"}}, arguments.output.style());
  for (const auto& run : arguments.runs) table.add({run});
  table.finish();
  return finish_output();
}

}  // namespace

void add_forget(program_options& program) {
  auto arguments = std::make_shared<forget_arguments>();
  command_options command =
      program.add_command("forget", "Delete runs from a database, all or none",
                          [arguments] { return run_forget(*arguments); });
  command.argument("file", arguments->file, "Database: a file, or the URL of a server");
  command.arguments("run", arguments->runs, "Names of runs");
  arguments->output.add_to(command);
  command.example("kivdb forget nightly.db R40 R41");
}

}  // namespace kiv::db
