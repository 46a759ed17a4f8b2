#include <algorithm>
#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/messages.h"
#include "kivdb/open_runs.h"
#include "kivdb/shared_options.h"
#include "report/printable.h"
#include "report/run_trend.h"

namespace kiv::db {
namespace {

struct trend_arguments {
  std::string file;
  list_option list;
  std::optional<std::size_t> last;
  top_option top;
  report::trend_options options;
  output_options output;
};

int run_trend(const trend_arguments& arguments) {
  const auto fail = [&](const std::string& error) { return complain_about(arguments.file, error); };
  std::string error;
  const auto database = open_runs(arguments.file, error);
  auto runs = database ? database->runs(error) : std::nullopt;
  if (!runs) return fail(error);
  if (runs->empty()) return fail("no run was imported yet");
  if (arguments.last && *arguments.last < runs->size()) {
    runs->erase(runs->begin(), runs->end() - static_cast<std::ptrdiff_t>(*arguments.last));
  }
  report::trend_options options = arguments.options;
  options.by = arguments.list.by();
  options.of = arguments.list.of();
  report::run_trend trend(options);
  for (const auto& info : *runs) {
    const auto run = database->load(info.name, error);
    if (!run) return fail(error);
    if (!trend.add(*run, error)) return complain(error);
  }
  if (!trend.process_was_seen()) {
    return complain("no run has a process " + quoted_name(*options.filter.process));
  }
  const report::print_style style = arguments.output.style();
  const bool for_people = style.format == report::output_format::terminal;
  trend.finish(for_people ? std::nullopt : arguments.top.given());
  report::print_trend(std::cout, trend, style, arguments.top.for_people());
  return finish_output();
}

}  // namespace

void add_trend(program_options& program) {
  auto arguments = std::make_shared<trend_arguments>();
  command_options command = program.add_command("trend", "Print what the runs of a database became",
                                                [arguments] { return run_trend(*arguments); });
  command.argument("file", arguments->file, "Database: a file, or the URL of a server");
  arguments->list.add_key_to(command);
  arguments->list.add_measure_to(command, "What to follow by name");
  command.count("--last", arguments->last, "Only so many runs, the last ones");
  arguments->top.add_to(command);
  add_filter(command, arguments->options.filter);
  arguments->output.add_to(command);
  command.example("kivdb trend nightly.db --by line --of leaked --last 10");
}

}  // namespace kiv::db
