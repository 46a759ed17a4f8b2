#include <algorithm>
#include <iostream>
#include <memory>

#include "fleet/print_fleet.h"
#include "kivdb/commands.h"
#include "kivdb/messages.h"
#include "kivdb/open_runs.h"
#include "kivdb/shared_options.h"

namespace kiv::db {
namespace {

using fleet::question;

struct fleet_arguments {
  std::string source;
  std::string label = "release", by = "line", of = "leaked", beyond = "2", leaked_above = "0";
  std::optional<std::size_t> runs;
  std::vector<std::string> only;
  top_option top;
  output_options output;
};

// All keys but the call path, whose text the views of a fleet do not have.
std::vector<std::string> fleet_keys() {
  std::vector<std::string> keys(report::key_names.begin(), report::key_names.end());
  std::erase(keys, report::name_of(report::group_key::path));
  return keys;
}

fleet::fleet_options options_of(const fleet_arguments& arguments) {
  fleet::fleet_options options;
  options.label = arguments.label;
  options.by = *report::find_key(arguments.by);
  options.of = *report::find_measure(arguments.of);
  options.beyond = *fleet::parse_multiple(arguments.beyond);
  options.leaked_above = *fleet::parse_bytes(arguments.leaked_above);
  options.runs = arguments.runs.value_or(options.runs);
  return options;
}

std::optional<fleet::fleet_answer> answer(question asked, store::run_source& source,
                                          const fleet::fleet_runs& runs,
                                          const fleet::fleet_options& options, std::string& error) {
  switch (asked) {
    case question::summary:
      return summary_of(runs);
    case question::hosts:
      return hosts_of(runs);
    case question::outliers:
      return outliers_of(runs, options);
    case question::peaks:
      return peaks_of(source, options, error);
    case question::first_leaks:
      return first_leaks_of(source, runs, options, error);
    case question::growth:
      return growth_of(source, runs, options, error);
  }
  return std::nullopt;
}

int run_fleet(const fleet_arguments& arguments) {
  const auto fail = [&](const std::string& error) {
    return complain_about(arguments.source, error);
  };
  if (arguments.runs == 1) return complain("--runs: growth takes two runs", status_usage);
  const fleet::fleet_options options = options_of(arguments);
  std::string error;
  const auto source = open_runs(arguments.source, error);
  if (!source) return fail(error);
  fleet::fleet_runs runs;
  if (!runs.read(*source, options.label, error)) return fail(error);
  std::vector<fleet::fleet_answer> answers;
  for (std::size_t i = 0; i < fleet::question_count; ++i) {
    const auto& only = arguments.only;
    if (!only.empty() && std::ranges::find(only, fleet::question_names[i]) == only.end()) continue;
    auto found = answer(static_cast<question>(i), *source, runs, options, error);
    if (!found) return fail(error);
    answers.push_back(std::move(*found));
  }
  print_fleet(std::cout, runs, answers, options, arguments.output.style(), arguments.top.given());
  return finish_output();
}

}  // namespace

void add_fleet(program_options& program) {
  auto arguments = std::make_shared<fleet_arguments>();
  command_options command = program.add_command("fleet",
                                                "Print what many runs have in common: by program, "
                                                "release and host, and what leaks since when",
                                                [arguments] { return run_fleet(*arguments); });
  command.argument("source", arguments->source, "Database: a file, or the URL of a server");
  command.option("--label", arguments->label, "The label whose values are the releases (release)");
  command.choice("--by", arguments->by, fleet_keys(), "What names stand for");
  command.choice("--of", arguments->of,
                 {report::measure_names.begin(), report::measure_names.end()}, "What is to grow");
  command.option("--beyond", arguments->beyond,
                 "A run is off when it has more than so many times the median (2)",
                 [](const std::string& text) {
                   return fleet::parse_multiple(text) ? ""
                                                      : "'" + text + "' is no number from 1 on";
                 });
  command.option("--leaked-above", arguments->leaked_above,
                 "A name leaks in a run when it leaked more than so many bytes, with K, M or G (0)",
                 [](const std::string& text) {
                   return fleet::parse_bytes(text) ? "" : "'" + text + "' is no number of bytes";
                 });
  command.count("--runs", arguments->runs,
                "Over how many runs of a program growth is looked for (5)");
  const std::vector<std::string> questions(fleet::question_names.begin(),
                                           fleet::question_names.end());
  command.repeatable_option("--only", arguments->only,
                            "One question: summary, hosts, outliers, peaks, first_leaks or growth; "
                            "repeatable",
                            [questions](const std::string& text) {
                              return std::ranges::find(questions, text) != questions.end()
                                         ? ""
                                         : "'" + text + "' is no question";
                            });
  arguments->top.add_to(command);
  arguments->output.add_to(command);
  command.example("kivdb fleet nightly.db --by line --leaked-above 64K");
}

}  // namespace kiv::db
