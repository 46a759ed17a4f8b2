#include <fmt/format.h>

#include <iostream>
#include <memory>

#include "clickhouse/setup.h"
#include "kivdb/commands.h"
#include "kivdb/messages.h"

namespace kiv::db {
namespace {

int run_setup(const std::vector<std::string>& servers) {
  for (const auto& text : servers) {
    std::string error;
    const auto url = clickhouse::parse_server_url(text, error);
    if (!url || !clickhouse::set_up(*url, error)) return complain_about(text, error);
    std::cout << fmt::format("{}: ready\n", clickhouse::without_password(text));
  }
  return finish_output();
}

}  // namespace

void add_setup(program_options& program) {
  auto servers = std::make_shared<std::vector<std::string>>();
  command_options command = program.add_command(
      "setup", "Make the database, tables and views on servers, where they are not there yet",
      [servers] { return run_setup(*servers); });
  command.arguments("url", *servers,
                    "clickhouse://[user[:password]@]host[:port]/database[?cluster=NAME]; of a "
                    "cluster every server");
  command.example(
      "kivdb setup clickhouse://a.lan/kiv?cluster=fleet clickhouse://b.lan/kiv?cluster=fleet");
}

}  // namespace kiv::db
