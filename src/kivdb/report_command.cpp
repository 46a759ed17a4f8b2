#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/load_source.h"
#include "kivdb/messages.h"
#include "kivdb/open_runs.h"
#include "kivdb/shared_options.h"
#include "report/print_report.h"
#include "report/printable.h"
#include "report/run_report.h"

namespace kiv::db {
namespace {

constexpr std::size_t most_other_runs = 10;

struct report_arguments {
  std::string source;
  std::optional<std::string> run;
  lists_option lists;
  top_option top;
  report::filter_options filter;
  output_options output;
};

// For people: that a database has more runs than the one that is shown.
void print_other_runs(const std::string& path, const std::string& shown) {
  std::string error, others;
  const auto kind = kind_of_source(path, error);
  if (!kind || *kind != source_kind::database) return;
  const auto database = open_runs(path, error);
  const auto runs = database ? database->runs(error) : std::nullopt;
  if (!runs || runs->size() < 2) return;
  std::size_t left = most_other_runs;
  for (auto run = runs->rbegin(); run != runs->rend(); ++run) {
    if (run->name == shown) continue;
    if (left-- == 0) {
      others += ", ...";
      break;
    }
    others += (others.empty() ? "" : ", ") + quoted_name(run->name);
  }
  std::cout << "\nOther runs (--run): " << others << '\n';
}

int run_report(const report_arguments& arguments) {
  std::string error;
  std::vector<run_profile> runs;
  if (!load_runs(arguments.source, arguments.run, runs, error)) return complain(error);
  const report::print_style style = arguments.output.style();
  const bool for_people = style.format == report::output_format::terminal;
  report::report_options options;
  options.lists = report::chosen_lists(arguments.lists.by(), arguments.lists.of(), for_people);
  if (!for_people) options.top = arguments.top.given();
  options.filter = arguments.filter;
  std::vector<report::run_report> reports(runs.size());
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (!report::make_report(runs[i], options, reports[i], error)) return complain(error);
  }
  report::print_reports(std::cout, reports, style, arguments.top.given());
  if (for_people && !arguments.run) print_other_runs(arguments.source, runs.front().name);
  return finish_output();
}

}  // namespace

void add_report(program_options& program) {
  auto arguments = std::make_shared<report_arguments>();
  command_options command = program.add_command(
      "report", "Print what a run was, who leaks, what made the peak, what is short-lived",
      [arguments] { return run_report(*arguments); });
  command.argument("source", arguments->source, "Directory of a run, header file or database");
  command.option("--run", arguments->run,
                 "Only this run (of a database: the one imported last, unless told)");
  arguments->lists.add_to(command);
  arguments->top.add_to(command);
  add_filter(command, arguments->filter);
  arguments->output.add_to(command);
  command.example("kivdb report R42/ --by line,path --of leaked");
}

}  // namespace kiv::db
