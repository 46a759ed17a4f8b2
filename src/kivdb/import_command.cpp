#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <map>
#include <memory>

#include "clickhouse/server_url.h"
#include "kivdb/commands.h"
#include "kivdb/load_source.h"
#include "kivdb/load_tables.h"
#include "kivdb/messages.h"
#include "kivdb/open_runs.h"
#include "kivdb/shared_options.h"
#include "kivdb/warn_of_losses.h"
#include "report/human.h"
#include "report/printable.h"
#include "report/run_report.h"

namespace kiv::db {
namespace {

struct import_arguments {
  std::vector<std::string> sources;
  std::optional<std::string> file, server;
  std::optional<std::string> name;
  bool rows = false;
  std::vector<std::string> labels;
  std::string sd, sf;  // separators of the tables; empty: read off the files
  output_options output;
};

std::string_view how_complete(const run_profile& run) {
  if (report::is_complete(run)) return "complete";
  const bool from_rows = std::ranges::any_of(run.traces, &profile::from_rows);
  return from_rows ? "computed from CSV tables" : "NOT COMPLETE";
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
                             report::grouped(records), how_complete(run));
  }
  void finish() {
    if (table_) table_->finish();
  }

 private:
  bool for_people_;
  std::optional<report::table_printer> table_;
};

std::optional<char> separator(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(text[0]);
}

// What is wrong with a label: KEY=VALUE, neither of them empty.
std::string fault_of_label(const std::string& text) {
  const auto equals = text.find('=');
  if (equals != std::string::npos && equals != 0 && equals + 1 < text.size()) return {};
  return quoted_name(text) + " is no label; KEY=VALUE is wanted";
}

// The labels by their keys. False when a key is there twice, which `error` names.
bool read_labels(const std::vector<std::string>& given, store::run_labels& labels,
                 std::string& error) {
  for (const auto& text : given) {
    const auto equals = text.find('=');
    labels.emplace_back(text.substr(0, equals), text.substr(equals + 1));
  }
  std::ranges::sort(labels);
  const auto twice = std::ranges::adjacent_find(
      labels, [](const auto& a, const auto& b) { return a.first == b.first; });
  if (twice != labels.end()) error = "the label " + quoted_name(twice->first) + " is given twice";
  return twice == labels.end();
}

store::save_result save(store::run_target& target, const run_profile& run,
                        store::save_options options, const run_tables* tables, std::string& error) {
  if (tables) {
    const auto loader = tables->loader(run, error);
    if (!loader) return store::save_result::failed;
    options.rows = *loader;
  }
  return target.save(run, options, error);
}

int run_import(const import_arguments& arguments) {
  if (arguments.sd.size() > 1 || arguments.sf.size() > 1) {
    return complain("a separator is one character", status_usage);
  }
  const rows::row_options options{separator(arguments.sd), separator(arguments.sf)};
  std::string error;
  if (arguments.file.has_value() == arguments.server.has_value()) {
    return complain("import needs one of --output FILE and --to URL", status_usage);
  }
  const std::string& into = arguments.file ? *arguments.file : *arguments.server;
  if (clickhouse::is_server_url(into) != arguments.server.has_value()) {
    return complain("--output takes a file, --to takes clickhouse://host:port/database",
                    status_usage);
  }
  store::run_labels labels;
  if (!read_labels(arguments.labels, labels, error)) return complain(error, status_usage);
  found_sources found;
  std::vector<run_profile> runs;
  std::map<std::string, std::string> run_sources;
  run_tables tables(options);
  if (!find_sources(arguments.sources, found, error) ||
      !read_sources(found, options, runs, run_sources, error) ||
      (arguments.rows && !tables.find(found, error))) {
    return complain(error);
  }
  if (arguments.name) {
    if (runs.size() > 1) {
      return complain(fmt::format("--as names one run, but there are {}", runs.size()),
                      status_usage);
    }
    run_sources[*arguments.name] = run_sources[runs.front().name];
    runs.front().name = *arguments.name;
  }
  const auto database = open_target(into, target_use::import, error);
  if (!database) return complain_about(into, error);
  import_printer printer(arguments.output.style());
  int status = status_done;
  for (const auto& run : runs) {
    warn_of_losses(run);
    const auto result = save(*database, run, {run_sources[run.name], labels},
                             arguments.rows ? &tables : nullptr, error);
    if (result == store::save_result::saved || result == store::save_result::replaced) {
      printer.add(run, result == store::save_result::replaced);
    } else {
      status = complain_about(into, "run " + quoted_name(run.name) + ": " + error);
    }
  }
  printer.finish();
  const int written = finish_output();
  return status != status_done ? status : written;
}

}  // namespace

void add_import(program_options& program) {
  auto arguments = std::make_shared<import_arguments>();
  command_options command =
      program.add_command("import", "Put the profiles of traces into a database",
                          [arguments] { return run_import(*arguments); });
  command.arguments("source", arguments->sources, "Directories of runs, or header files");
  command.option("-o,--output", arguments->file, "Database file; made when there is none");
  command.option("--to", arguments->server,
                 "In place of a file: clickhouse://[user[:password]@]host[:port]/database"
                 "[?cluster=NAME]");
  command.option("--as", arguments->name, "Name of the run, in place of its run id");
  command.repeatable_option("--label", arguments->labels,
                            "A label KEY=VALUE of the runs, such as release=4.2; repeatable",
                            fault_of_label);
  command.flag("--rows", arguments->rows,
               "Load the CSV tables too, for SQL of your own; `kiv -R` writes them");
  command.option("--sd", arguments->sd,
                 "Separator that kiv was given with -sd, if its tables do not show it");
  command.option("--sf", arguments->sf,
                 "Separator that kiv was given with -sf, if its tables do not show it");
  arguments->output.add_to(command);
  command.example("kivdb import R42/ -o nightly.db");
}

}  // namespace kiv::db
