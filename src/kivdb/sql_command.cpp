#include <iostream>
#include <memory>

#include "kivdb/commands.h"
#include "kivdb/messages.h"
#include "kivdb/open_runs.h"
#include "kivdb/print_query.h"
#include "kivdb/shared_options.h"

namespace kiv::db {
namespace {

struct sql_arguments {
  std::string file, sql;
  top_option top;
  output_options output;
};

int run_sql(const sql_arguments& arguments) {
  std::string error;
  const auto database = open_runs(arguments.file, error);
  if (!database) return complain_about(arguments.file, error);
  // What is wrong with the statement is a matter of usage, what is wrong with the file is not.
  const auto rows = database->select(arguments.sql, {}, error);
  if (!rows) return complain(error, status_usage);
  if (!print_query(std::cout, *rows, arguments.output.style(), arguments.top.given())) {
    return complain_about(arguments.file, rows->error());
  }
  return finish_output();
}

}  // namespace

void add_sql(program_options& program) {
  auto arguments = std::make_shared<sql_arguments>();
  command_options command = program.add_command("sql", "Print the rows of a SELECT of your own",
                                                [arguments] { return run_sql(*arguments); });
  command.argument("file", arguments->file, "Database: a file, or the URL of a server");
  command.argument("statement", arguments->sql, "A SELECT statement");
  arguments->top.add_to(command);
  arguments->output.add_to(command);
  command.example(
      "kivdb sql nightly.db \"SELECT source_line, leaked_bytes FROM by_line WHERE run = "
      "'R42'\"");
}

}  // namespace kiv::db
