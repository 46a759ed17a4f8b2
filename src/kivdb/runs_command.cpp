#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/messages.h"
#include "kivdb/open_runs.h"
#include "kivdb/shared_options.h"

namespace kiv::db {
namespace {

using report::column_kind;

struct runs_arguments {
  std::string file;
  output_options output;
};

std::string labels_of(const store::run_info& run) {
  std::string list;
  for (const auto& [key, value] : run.labels) {
    if (!list.empty()) list += ", ";
    list += key;
    list += '=';
    list += value;
  }
  return list;
}

int run_runs(const runs_arguments& arguments) {
  std::string error;
  const auto database = open_runs(arguments.file, error);
  const auto runs = database ? database->runs(error) : std::nullopt;
  if (!runs) return complain_about(arguments.file, error);
  report::table_printer table(std::cout,
                              {{"run", "run"},
                               {"imported", "imported"},
                               {"complete", "complete"},
                               {"traces", "traces", column_kind::count},
                               {"records", "records", column_kind::count},
                               {"rows", "rows", column_kind::count},
                               {"leaked_bytes", "leaked", column_kind::bytes},
                               {"peak_bytes", "peak", column_kind::bytes},
                               {"live_bytes", "live at the end", column_kind::bytes},
                               {"allocated_bytes", "allocated", column_kind::bytes},
                               {"source", "source"},
                               {"labels", "labels"}},
                              arguments.output.style());
  for (const auto& run : *runs) {
    const char* complete = run.from_rows ? "unknown" : run.complete ? "yes" : "no";
    table.add({run.name, run.imported_at, std::string(complete), run.traces, run.records,
               run.rows ? report::cell(*run.rows) : report::cell(), run.leaked.bytes,
               run.peak.bytes, run.live.bytes, run.allocated.bytes, run.source, labels_of(run)});
  }
  table.finish();
  return finish_output();
}

}  // namespace

void add_runs(program_options& program) {
  auto arguments = std::make_shared<runs_arguments>();
  command_options command =
      program.add_command("runs", "List the runs of a database in the order of their import",
                          [arguments] { return run_runs(*arguments); });
  command.argument("file", arguments->file, "Database: a file, or the URL of a server");
  arguments->output.add_to(command);
  command.example("kivdb runs nightly.db");
}

}  // namespace kiv::db
