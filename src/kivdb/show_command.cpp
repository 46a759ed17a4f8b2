#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/messages.h"
#include "kivdb/open_runs.h"
#include "kivdb/print_query.h"
#include "kivdb/shared_options.h"

namespace kiv::db {
namespace {

struct show_arguments {
  std::string file, view;
  std::optional<std::string> run;
  top_option top;
  output_options output;
};

int run_show(const show_arguments& arguments) {
  const auto fail = [&](const std::string& error) { return complain_about(arguments.file, error); };
  std::string error;
  const auto database = open_runs(arguments.file, error);
  if (!database) return fail(error);
  const auto rows = database->view(arguments.view, arguments.run, error);
  if (!rows) return fail(error);
  if (!print_query(std::cout, *rows, arguments.output.style(), arguments.top.given())) {
    return fail(rows->error());
  }
  return finish_output();
}

}  // namespace

void add_show(program_options& program) {
  auto arguments = std::make_shared<show_arguments>();
  command_options command = program.add_command("show", "Print a view of a database",
                                                [arguments] { return run_show(*arguments); });
  command.argument("file", arguments->file, "Database: a file, or the URL of a server");
  command.argument("view", arguments->view, "Name of the view; `kivdb views` lists them");
  command.option("--run", arguments->run, "Only rows of this run");
  arguments->top.add_to(command);
  arguments->output.add_to(command);
  command.example("kivdb show nightly.db heap_growth --run R42 --csv");
}

}  // namespace kiv::db
