#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/messages.h"
#include "kivdb/shared_options.h"
#include "store/view_catalogue.h"

namespace kiv::db {
namespace {

int run_views(const output_options& output) {
  report::table_printer table(std::cout, {{"view", "view"}, {"description", "what it answers"}},
                              output.style());
  for (const auto& view : store::views()) {
    table.add({std::string(view.name), std::string(view.description)});
  }
  table.finish();
  return finish_output();
}

}  // namespace

void add_views(program_options& program) {
  auto output = std::make_shared<output_options>();
  command_options command =
      program.add_command("views", "List the views, each with what it answers",
                          [output] { return run_views(*output); });
  output->add_to(command);
  command.example("kivdb views");
}

}  // namespace kiv::db
