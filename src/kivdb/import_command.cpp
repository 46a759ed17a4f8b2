#include <fmt/format.h>

#include <chrono>
#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/load_source.h"
#include "kivdb/messages.h"
#include "kivdb/shared_options.h"
#include "report/human.h"
#include "report/printable.h"
#include "report/run_report.h"
#include "store/run_store.h"

namespace kiv::db {
namespace {

using report::column_kind;
using report::quoted_name;

struct import_arguments {
  std::vector<std::string> sources;
  std::string file;
  std::optional<std::string> name;
  output_options output;
};

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const auto& text : texts) all += (all.empty() ? "" : " ") + text;
  return all;
}

// Traces are replayed, runs of databases copied.
bool load_all(const std::vector<std::string>& sources, std::vector<run_profile>& runs,
              std::string& error) {
  std::vector<std::string> traces;
  for (const auto& source : sources) {
    const auto kind = kind_of_source(source, error);
    if (!kind) return false;
    if (*kind != source_kind::database) {
      traces.push_back(source);
      continue;
    }
    error = source + ": a database; `import` takes traces";
    return false;
  }
  std::vector<std::string> headers;
  return find_headers(traces, headers, error) && replay(headers, runs, error);
}

// What is missing in a run, for the error stream.
void warn_of_losses(const run_profile& run) {
  for (const auto& trace : run.traces) {
    for (const auto& lost : trace.losses) {
      complain(fmt::format("run {}, process {}: not complete: {} x {}{}", quoted_name(run.name),
                           trace.pid, report::grouped(lost.count), lost.what,
                           lost.first.empty() ? "" : " (first: " + lost.first + ")"));
    }
  }
}

class import_printer {
 public:
  explicit import_printer(const report::print_style& style)
      : for_people_(style.format == report::output_format::terminal) {
    if (for_people_) return;
    table_.emplace(
        std::cout,
        std::vector<report::column>{
            {"run", ""}, {"result", ""}, {"traces", ""}, {"records", ""}, {"complete", ""}},
        style);
  }

  void add(const run_profile& run, bool replaced) {
    std::uint64_t records = 0;
    for (const auto& trace : run.traces) records += trace.records;
    const bool complete = report::is_complete(run);
    const std::string result = replaced ? "replaced" : "imported";
    if (table_) {
      table_->add({run.name, result, std::uint64_t{run.traces.size()}, records,
                   std::string(complete ? "yes" : "no")});
      return;
    }
    std::cout << fmt::format("run {}: {}, {} {} of {} memory records, {}\n", quoted_name(run.name),
                             result, run.traces.size(), run.traces.size() == 1 ? "trace" : "traces",
                             report::grouped(records), complete ? "complete" : "NOT COMPLETE");
  }
  void finish() {
    if (table_) table_->finish();
  }

 private:
  bool for_people_;
  std::optional<report::table_printer> table_;
};

int run_import(const import_arguments& arguments) {
  std::string error;
  std::vector<run_profile> runs;
  if (!load_all(arguments.sources, runs, error)) return complain(error);
  if (arguments.name) {
    if (runs.size() > 1) {
      return complain(fmt::format("--as names one run, but there are {}", runs.size()),
                      status_usage);
    }
    runs.front().name = *arguments.name;
  }
  store::run_store database;
  if (!database.open(arguments.file, store::open_mode::create, error)) {
    return complain_about(arguments.file, error);
  }
  import_printer printer(arguments.output.style());
  int status = status_done;
  for (const auto& run : runs) {
    warn_of_losses(run);
    const auto result = database.save(run, {joined(arguments.sources)}, error);
    if (result == store::save_result::saved || result == store::save_result::replaced) {
      printer.add(run, result == store::save_result::replaced);
    } else {
      status = complain_about(arguments.file, "run " + quoted_name(run.name) + ": " + error);
    }
  }
  printer.finish();
  const int written = finish_output();
  return status != status_done ? status : written;
}

}  // namespace

command add_import(CLI::App& program) {
  auto arguments = std::make_shared<import_arguments>();
  CLI::App* app = program.add_subcommand("import", "Put the profiles of traces into a database");
  app->add_option("source", arguments->sources, "Directories of runs, or header files")->required();
  app->add_option("-o,--output", arguments->file, "Database file; made when there is none")
      ->required();
  app->add_option("--as", arguments->name, "Name of the run, in place of its run id");
  arguments->output.add_to(*app);
  app->footer("Example: kivdb import R42/ -o nightly.db");
  return {app, [arguments] { return run_import(*arguments); }};
}

}  // namespace kiv::db
