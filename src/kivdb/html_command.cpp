#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/load_source.h"
#include "kivdb/messages.h"
#include "kivdb/shared_options.h"
#include "report/html_page.h"
#include "report/human.h"
#include "report/printable.h"
#include "util/whole_file.h"

namespace kiv::db {
namespace {

struct html_arguments {
  std::vector<std::string> sources;  // one or two, or a source and two runs in it
  std::vector<std::string> runs;
  std::string file;
  report::filter_options filter;
  output_options output;
};

struct wanted_run {
  std::string source;
  std::optional<std::string> run;
};

// Which runs the arguments name; none when they do not fit together.
std::vector<wanted_run> wanted_runs(const html_arguments& arguments) {
  const auto& [sources, runs, file, filter, output] = arguments;
  if (sources.size() == 3) {
    if (!runs.empty()) return {};
    return {{sources[0], sources[1]}, {sources[0], sources[2]}};
  }
  std::vector<wanted_run> wanted;
  if (sources.size() == 2) {
    if (!runs.empty() && runs.size() != 2) return {};
    for (std::size_t i = 0; i < 2; ++i) {
      wanted.push_back({sources[i], runs.empty() ? std::nullopt : std::optional(runs[i])});
    }
    return wanted;
  }
  if (runs.size() > 2) return {};
  for (const auto& run : runs) wanted.push_back({sources[0], run});
  if (runs.empty()) wanted.push_back({sources[0], std::nullopt});
  return wanted;
}

// Whether writing the page there would destroy what it is made from, or another database or trace.
bool holds_runs(const std::string& path, const std::vector<wanted_run>& shown) {
  std::string unknown;
  const auto kind = kind_of_source(path, unknown);
  if (kind != source_kind::header) return kind == source_kind::database;
  const std::string name = std::filesystem::path(path).filename().string();
  if (name.find("kivhdr") != std::string::npos || name.find("kivdat") != std::string::npos) {
    return true;
  }
  return std::ranges::any_of(shown, [&](const wanted_run& run) {
    std::error_code other;
    return std::filesystem::equivalent(path, run.source, other);
  });
}

void print_written(const html_arguments& arguments, const report::page_data& page) {
  // A page that went down a pipe may stand where these words would.
  std::error_code unknown;
  if (!std::filesystem::is_regular_file(arguments.file, unknown)) return;
  const report::print_style style = arguments.output.style();
  if (style.format == report::output_format::terminal) {
    std::cout << fmt::format(
        "{}: {}\n", printable(arguments.file),
        report::human_bytes(std::uint64_t{std::filesystem::file_size(arguments.file, unknown)}));
    for (const auto& sentence : page.left_out) std::cout << "  " << sentence << '\n';
    return;
  }
  report::table_printer table(std::cout, {{"run", ""}, {"file", ""}, {"complete", ""}}, style);
  for (const auto& run : page.runs) {
    table.add(
        {run.run->name, arguments.file, std::string(report::is_complete(*run.run) ? "yes" : "no")});
  }
  table.finish();
}

int run_html(const html_arguments& arguments) {
  const auto wanted = wanted_runs(arguments);
  if (wanted.empty()) {
    return complain("--run names a run for each source, or the two runs of one source",
                    status_usage);
  }
  if (holds_runs(arguments.file, wanted)) {
    return complain_about(arguments.file, "holds runs; a page does not replace it");
  }
  std::string error;
  std::vector<run_profile> runs(wanted.size());
  std::vector<const run_profile*> shown;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (!load_run(wanted[i].source, wanted[i].run, runs[i], error)) return complain(error);
    shown.push_back(&runs[i]);
  }
  report::page_data page;
  if (!report::make_page_data(shown, {.filter = arguments.filter, .version = KIVDB_VERSION}, page,
                              error)) {
    return complain(error);
  }
  const auto write = [&](std::ostream& out) { report::write_html_page(out, page); };
  if (!write_whole_file(arguments.file, write, error)) {
    return complain_about(arguments.file, error);
  }
  print_written(arguments, page);
  return finish_output();
}

}  // namespace

void add_html(program_options& program) {
  auto arguments = std::make_shared<html_arguments>();
  command_options command =
      program.add_command("html", "Write a page for a browser that shows a run, or compares two",
                          [arguments] { return run_html(*arguments); });
  command.arguments("source", arguments->sources, 1, 3,
                    "One source, two to compare, or a database and two runs in it");
  command.required_option("-o,--output", arguments->file, "The page; replaced when it is there");
  command.repeatable_option("--run", arguments->runs,
                            "The run to show; given twice, the two runs to compare, of one source "
                            "or one of each");
  add_filter(command, arguments->filter);
  arguments->output.add_to(command);
  command.example("kivdb html R42/ -o r42.html");
}

}  // namespace kiv::db
