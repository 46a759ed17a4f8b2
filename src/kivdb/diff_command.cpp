#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/load_source.h"
#include "kivdb/messages.h"
#include "kivdb/shared_options.h"
#include "report/run_diff.h"

namespace kiv::db {
namespace {

struct diff_arguments {
  std::vector<std::string> runs;  // two sources, or a source and two runs in it
  list_option list;
  top_option top;
  std::vector<std::string> limits;
  report::diff_options options;
  output_options output;
};

bool load_both(const std::vector<std::string>& runs, run_profile& a, run_profile& b,
               std::string& error) {
  if (runs.size() == 2) {
    return load_run(runs[0], std::nullopt, a, error) && load_run(runs[1], std::nullopt, b, error);
  }
  return load_run(runs[0], runs[1], a, error) && load_run(runs[0], runs[2], b, error);
}

int run_diff(const diff_arguments& arguments) {
  report::diff_options options = arguments.options;
  for (const auto& text : arguments.limits) {
    const auto limit = report::parse_growth_limit(text);
    if (!limit) {
      return complain("--fail-above " + text + ": not MEASURE=LIMIT, such as leaked=64K or peak=5%",
                      status_usage);
    }
    options.limits.push_back(*limit);
  }
  options.by = arguments.list.by();
  options.of = arguments.list.of();
  const report::print_style style = arguments.output.style();
  if (style.format != report::output_format::terminal) options.top = arguments.top.given();
  std::string error;
  run_profile a, b;
  if (!load_both(arguments.runs, a, b, error)) return complain(error);
  report::run_diff diff;
  if (!report::make_diff(a, b, options, diff, error)) return complain(error);
  report::print_diff(std::cout, diff, style, arguments.top.for_people());
  if (const int status = finish_output()) return status;
  const std::string verdict = report::verdict_in_words(diff);
  if (verdict.empty()) return status_done;
  return complain(verdict, diff.judged ? status_limit_passed : status_incomplete);
}

}  // namespace

void add_diff(program_options& program) {
  auto arguments = std::make_shared<diff_arguments>();
  command_options command = program.add_command("diff", "Compare two runs, what grew most first",
                                                [arguments] { return run_diff(*arguments); });
  command.arguments("runs", arguments->runs, 2, 3,
                    "Two sources A and B, or a database and two runs in it");
  arguments->list.add_key_to(command);
  arguments->list.add_measure_to(command, "What to compare");
  arguments->top.add_to(command);
  command.repeatable_option(
      "--fail-above", arguments->limits,
      "MEASURE=LIMIT: end with status 3 when the total or a name grew by more: bytes "
      "(K, M and G allowed) or a percentage such as 5%. May be repeated");
  command.flag("--allow-incomplete", arguments->options.allow_incomplete,
               "Judge runs that are not complete too");
  add_filter(command, arguments->options.filter);
  arguments->output.add_to(command);
  command.example("kivdb diff nightly.db R41 R42 --fail-above leaked=0 --fail-above peak=5%");
}

}  // namespace kiv::db
