#include <iostream>
#include <memory>

#include "clickhouse/setup.h"
#include "kivdb/commands.h"
#include "kivdb/messages.h"
#include "kivdb/shared_options.h"

namespace kiv::db {
namespace {

struct setup_arguments {
  std::vector<std::string> servers;
  output_options output;
};

int run_setup(const setup_arguments& arguments) {
  report::table_printer table(std::cout, {{"ready", "ready"}}, arguments.output.style());
  for (const auto& text : arguments.servers) {
    std::string error;
    const auto url = clickhouse::parse_server_url(text, error);
    if (!url || !clickhouse::set_up(*url, error)) return complain_about(text, error);
    table.add({clickhouse::without_password(text)});
  }
  table.finish();
  return finish_output();
}

}  // namespace

void add_setup(program_options& program) {
  auto arguments = std::make_shared<setup_arguments>();
  command_options command = program.add_command(
      "setup", "Make the database, tables and views on servers, where they are not there yet",
      [arguments] { return run_setup(*arguments); });
  command.arguments("url", arguments->servers,
                    "clickhouse://[user[:password]@]host[:port]/database[?cluster=NAME]; of a "
                    "cluster every server");
  arguments->output.add_to(command);
  command.example(
      "kivdb setup clickhouse://a.lan/kiv?cluster=fleet clickhouse://b.lan/kiv?cluster=fleet");
}

}  // namespace kiv::db
