#include "command_line.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdlib>
#include <iostream>

#include "diff.h"
#include "importer.h"
#include "printable.h"
#include "report.h"
#include "show.h"
#include "view_keys.h"
#include "views.h"

namespace kiv::db {
namespace {

constexpr int status_usage = 1, status_input = 2, status_limit = 3;
constexpr std::size_t widest_view = 250;  // where no terminal sets a limit

int complain(const std::string& what, int status = status_input) {
  std::cerr << "kivdb: " << what << '\n';
  return status;
}

print_style style_of_terminal() {
  print_style style;
  if (isatty(STDOUT_FILENO) == 0) return style;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col >= 40) style.width = size.ws_col;
  const char* term = std::getenv("TERM");
  style.color = std::getenv("NO_COLOR") == nullptr && term && std::string_view(term) != "dumb";
  return style;
}

// What several commands share.
struct output_flags {
  bool csv = false, json = false;

  void add_to(CLI::App& command) {
    auto* as_csv = command.add_flag("--csv", csv, "Print comma-separated values");
    command.add_flag("--json", json, "Print JSON")->excludes(as_csv);
  }
  output_format format() const {
    return csv ? output_format::csv : json ? output_format::json : output_format::terminal;
  }
};

struct import_command {
  std::vector<std::string> sources;
  std::string database_file = "kiv.db";
  std::string sd, sf;
};

std::optional<char> separator(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(text[0]);
}

void print_result(const run_plan& run, const import_result& result, double seconds) {
  std::cout << "run " << printable(run.run_id) << ": "
            << grouped(static_cast<std::int64_t>(result.rows)) << " rows from " << run.files.size()
            << " files, " << grouped(static_cast<std::int64_t>(result.rejected)) << " rejected, ";
  char time[32];
  std::snprintf(time, sizeof time, "%.1f s", seconds);
  std::cout << time << std::endl;
  for (const auto& line : result.rejected_files) std::cerr << "kivdb: " << line << '\n';
}

int run_import(const import_command& command) {
  if (command.sd.size() > 1 || command.sf.size() > 1) {
    return complain("a separator is one character", status_usage);
  }
  std::string error;
  import_plan plan;
  if (!make_import_plan(command.sources, plan, error)) return complain(error);
  database db;
  if (!db.open(command.database_file, open_mode::create) ||
      !db.exec("PRAGMA cache_size = -65536")) {
    return complain(command.database_file + ": " + db.error());
  }
  for (const auto& note : plan.notes) std::cerr << "kivdb: " << note << '\n';

  import_progress progress(plan.bytes());
  const import_options options{separator(command.sd), separator(command.sf)};
  importer import(db, options, progress);
  int status = 0;
  for (const auto& run : plan.runs) {
    const auto start = std::chrono::steady_clock::now();
    import_result result;
    const bool done = import.import_run(run, result);
    progress.clear();
    if (!done) {
      status = complain("run " + printable(run.run_id) + ": " + import.error());
      continue;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    print_result(run, result, took.count());
  }
  return status;
}

// Opens the database for a command that reads it.
bool open_for_reading(database& db, const std::string& file) {
  if (db.open(file, open_mode::read_only)) return true;
  complain(file + ": " + db.error());
  return false;
}

int finish_output() { return std::cout.flush() ? 0 : complain("cannot write the output"); }

int run_report(const std::string& file, const report_options& options) {
  database db;
  if (!open_for_reading(db, file)) return status_input;
  std::string error;
  if (!print_report(std::cout, db, options, error)) return complain(file + ": " + error);
  return finish_output();
}

int run_show(const std::string& file, const show_options& options) {
  database db;
  if (!open_for_reading(db, file)) return status_input;
  std::string error;
  if (!print_view(std::cout, db, options, error)) return complain(file + ": " + error);
  return finish_output();
}

int run_diff(const std::string& file, const diff_options& options) {
  database db;
  if (!open_for_reading(db, file)) return status_input;
  std::string error;
  const auto result = print_diff(std::cout, db, options, error);
  if (const int status = finish_output()) return status;
  switch (result) {
    case diff_result::within_limit:
      return 0;
    case diff_result::beyond_limit:
      return complain(error, status_limit);
    case diff_result::failed:
      break;
  }
  return complain(file + ": " + error);
}

int run_views() {
  result_table table;
  table.columns = {{"view", "view"}, {"description", "what it answers"}};
  for (const auto& v : views()) table.rows.push_back({v.name, v.description});
  print_style style = style_of_terminal();
  if (isatty(STDOUT_FILENO) == 0) style.width = widest_view;
  print_aligned(std::cout, table, style);
  return finish_output();
}

std::vector<std::string> key_names() {
  std::vector<std::string> names;
  for (const auto& key : view_keys()) names.push_back(key.name);
  return names;
}

}  // namespace

int kivdb_main(int argc, char** argv) {
  CLI::App app("Puts the tables of kiv into an SQLite database and answers questions from it.",
               "kivdb");
  app.set_version_flag("--version", "kivdb " KIV_VERSION);
  app.require_subcommand(0, 1);  // so that an unknown word is named in the message
  app.footer(
      "Exit status: 0 done, 1 wrong usage, 2 unreadable input or database, 3 a limit given\n"
      "to diff was passed. `kivdb COMMAND --help` has an example for each command.");

  import_command import;
  CLI::App& import_app = *app.add_subcommand("import", "Import the runs that kiv wrote");
  import_app.add_option("source", import.sources, "Import scripts, or directories that hold them")
      ->required();
  import_app.add_option("-o,--output", import.database_file, "Database file")
      ->capture_default_str();
  import_app.add_option("--sd", import.sd,
                        "Separator that kiv was given with -sd, if the files do not show it");
  import_app.add_option("--sf", import.sf,
                        "Separator that kiv was given with -sf, if the files do not show it");
  import_app.footer("Example: kivdb import R42/ -o r42.db");

  output_flags output;
  std::string file;
  report_options report;
  report.by = {"id", "line", "arc"};
  CLI::App& report_app =
      *app.add_subcommand("report", "Print a summary of a run and its top lists");
  report_app.add_option("file", file, "Database file")->required();
  report_app.add_option("--run", report.run, "Run id (default: the run imported last)");
  report_app.add_option("--top", report.top, "Rows of each list")
      ->check(CLI::Range(1, 1000000))
      ->capture_default_str();
  report_app.add_option("--by", report.by, "Lists to print: id, color, line, arc, process, query")
      ->delimiter(',')
      ->check(CLI::IsMember(key_names()));
  output.add_to(report_app);
  report_app.footer("Example: kivdb report r42.db --by line,process --top 5");

  show_options show;
  CLI::App& show_app = *app.add_subcommand("show", "Print a view");
  show_app.add_option("file", file, "Database file")->required();
  show_app.add_option("view", show.view, "Name of the view")->required();
  show_app.add_option("--run", show.run, "Only rows of this run");
  show_app.add_option("--top", show.top, "Only so many rows")->check(CLI::Range(1, 1000000));
  output.add_to(show_app);
  show_app.footer("Example: kivdb show r42.db marker_change --run R42 --csv");

  diff_options diff;
  std::string limit;
  CLI::App& diff_app = *app.add_subcommand("diff", "Compare two runs");
  diff_app.add_option("file", file, "Database file")->required();
  diff_app.add_option("run-a", diff.run_a, "Run id to compare with")->required();
  diff_app.add_option("run-b", diff.run_b, "Run id that may have grown")->required();
  diff_app.add_option("--by", diff.by, "id, color, line, arc, process or query")
      ->check(CLI::IsMember(key_names()))
      ->capture_default_str();
  diff_app.add_option("--of", diff.of, "Bytes to compare: live at the end, peak or allocated")
      ->check(CLI::IsMember({"live", "peak", "allocated"}))
      ->capture_default_str();
  diff_app.add_option("--top", diff.top, "Rows to print")
      ->check(CLI::Range(1, 1000000))
      ->capture_default_str();
  diff_app.add_option("--fail-above", limit,
                      "Exit with status 3 when a row or the sum grew by more: bytes (K, M and G "
                      "allowed) or a percentage such as 5%");
  output.add_to(diff_app);
  diff_app.footer("Example: kivdb diff nightly.db R41 R42 --by line --fail-above 64K");

  CLI::App& views_app = *app.add_subcommand("views", "List the views with what they answer");
  views_app.footer("Example: kivdb views");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& stop) {
    return app.exit(stop) == 0 ? 0 : status_usage;
  }

  if (app.get_subcommands().empty()) {
    return complain("a command is missing; `kivdb --help` lists them", status_usage);
  }
  report.format = show.format = diff.format = output.format();
  report.style = show.style = diff.style = style_of_terminal();
  if (isatty(STDOUT_FILENO) == 0) show.style.width = widest_view;
  if (!limit.empty()) {
    diff.fail_above = parse_limit(limit);
    if (!diff.fail_above) return complain("--fail-above " + limit + ": not a limit", status_usage);
  }
  if (import_app.parsed()) return run_import(import);
  if (report_app.parsed()) return run_report(file, report);
  if (show_app.parsed()) return run_show(file, show);
  if (diff_app.parsed()) return run_diff(file, diff);
  return run_views();
}

}  // namespace kiv::db
