#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/load_source.h"
#include "kivdb/messages.h"
#include "kivdb/shared_options.h"
#include "report/call_tree.h"

namespace kiv::db {
namespace {

struct tree_arguments {
  std::string source;
  std::optional<std::string> run;
  list_option list;
  report::tree_options options;
  output_options output;
};

int run_tree(const tree_arguments& arguments) {
  std::string error;
  run_profile run;
  if (!load_run(arguments.source, arguments.run, run, error)) return complain(error);
  report::tree_options options = arguments.options;
  options.of = arguments.list.of();
  report::call_tree tree;
  if (!report::make_tree(run, options, tree, error)) return complain(error);
  report::print_tree(std::cout, tree, arguments.output.style());
  return finish_output();
}

}  // namespace

void add_tree(program_options& program) {
  auto arguments = std::make_shared<tree_arguments>();
  arguments->list.set_measure(report::measure::peak);
  command_options command = program.add_command("tree", "Print the call paths of a run as a tree",
                                                [arguments] { return run_tree(*arguments); });
  command.argument("source", arguments->source, "Directory of a run, header file or database");
  command.option("--run", arguments->run,
                 "This run (of a database: the one imported last, unless told)");
  arguments->list.add_measure_to(command, "What to add up");
  command.percentage("--min-share", arguments->options.min_share,
                     "Leave out calls that hold less than so many percent");
  add_filter(command, arguments->options.filter);
  arguments->output.add_to(command);
  command.example("kivdb tree R42/ --of peak --min-share 5");
}

}  // namespace kiv::db
