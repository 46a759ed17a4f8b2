#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iostream>
#include <memory>

#include "export/run_export.h"
#include "kivdb/commands.h"
#include "kivdb/load_source.h"
#include "kivdb/messages.h"
#include "kivdb/shared_options.h"
#include "kivdb/warn_of_losses.h"
#include "report/printable.h"
#include "util/whole_file.h"

namespace kiv::db {
namespace {

struct export_arguments {
  std::string source;
  std::optional<std::string> run;
  std::string format;
  measures_option measures;
  exports::export_options options;
  std::string file = "-";

  bool to_standard_output() const { return file == "-"; }
};

bool are_one_file(const std::string& a, const std::string& b) {
  struct stat of_a {
  }, of_b{};
  return stat(a.c_str(), &of_a) == 0 && stat(b.c_str(), &of_b) == 0 && of_a.st_dev == of_b.st_dev &&
         of_a.st_ino == of_b.st_ino;
}

// Why the file must not be written, in words; empty when it may be.
std::string refusal(const export_arguments& arguments, exports::export_format format) {
  if (!arguments.to_standard_output()) {
    return are_one_file(arguments.source, arguments.file) ? "the output is the source" : "";
  }
  const bool is_binary = format == exports::export_format::pprof;
  return is_binary && isatty(STDOUT_FILENO) != 0 ? "pprof is nothing for a terminal: give -o FILE"
                                                 : "";
}

// What the file cannot say itself.
void warn(const run_profile& run) {
  warn_of_losses(run);
  for (const auto& trace : run.traces) {
    const auto say = [&](std::string_view what, std::string_view which) {
      complain(
          fmt::format("run {}, process {}: {}{}", quoted_name(run.name), trace.pid, what, which));
    };
    if (trace.from_rows) say("computed from CSV tables, which have no call paths", "");
    for (const auto& note : trace.notes) say("left out: ", note);
  }
}

int write_to(const std::string& path, const exports::run_export& what) {
  std::string error;
  whole_file file;
  if (!file.open(path, error)) return complain_about(path, error);
  exports::write_export(file.stream(), what);
  return file.commit(error) ? status_done : complain_about(path, error);
}

int run_export(const export_arguments& arguments) {
  exports::export_options options = arguments.options;
  options.format = *exports::find_format(arguments.format);
  options.of = arguments.measures.of();
  std::string error = options.misuse();
  if (error.empty()) error = refusal(arguments, options.format);
  if (!error.empty()) return complain(error, status_usage);
  run_profile run;
  if (!load_run(arguments.source, arguments.run, run, error)) return complain(error);
  exports::run_export what;
  if (!exports::make_export(run, options, what, error)) return complain(error);
  warn(run);
  if (!arguments.to_standard_output()) return write_to(arguments.file, what);
  exports::write_export(std::cout, what);
  return finish_output();
}

}  // namespace

void add_export(program_options& program) {
  auto arguments = std::make_shared<export_arguments>();
  command_options command =
      program.add_command("export", "Write call paths in the file format of another tool",
                          [arguments] { return run_export(*arguments); });
  command.argument("source", arguments->source, "Directory of a run, header file or database");
  command.option("--run", arguments->run,
                 "This run (of a database: the one imported last, unless told)");
  command.required_choice("--format", arguments->format,
                          {exports::format_names.begin(), exports::format_names.end()},
                          "collapsed (for flame graphs), speedscope or pprof");
  arguments->measures.add_to(command, "What to export, unless told everything (collapsed: one)");
  command.flag("--blocks", arguments->options.blocks,
               "Count blocks in place of bytes; pprof has both");
  command.flag("--ids", arguments->options.ids,
               "Put allocation id and colour around the call path; pprof has them as labels");
  add_filter(command, arguments->options.filter);
  command.option("-o,--output", arguments->file, "File to write, unless told standard output");
  command.example("kivdb export R42/ --format collapsed --of peak -o peak.txt");
}

}  // namespace kiv::db
