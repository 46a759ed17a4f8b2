#include <algorithm>
#include <iostream>
#include <memory>

#include "clickhouse/prune.h"
#include "kivdb/commands.h"
#include "kivdb/messages.h"
#include "kivdb/shared_options.h"

namespace kiv::db {
namespace {

constexpr std::size_t hours_of_a_day = 24, most_hours = 100'000;

struct prune_arguments {
  std::vector<std::string> servers;
  std::optional<std::size_t> hours;
  output_options output;
};

int run_prune(const prune_arguments& arguments) {
  report::table_printer table(std::cout, {{"server", "server"}, {"loads", "loads deleted"}},
                              arguments.output.style());
  const auto hours =
      static_cast<std::int64_t>(std::min(arguments.hours.value_or(hours_of_a_day), most_hours));
  for (const auto& text : arguments.servers) {
    std::string error;
    const auto url = clickhouse::parse_server_url(text, error);
    const auto pruned = url ? clickhouse::prune(*url, hours, error) : std::nullopt;
    if (!pruned) return complain_about(text, error);
    table.add({clickhouse::without_password(text), std::uint64_t{*pruned}});
  }
  table.finish();
  return finish_output();
}

}  // namespace

void add_prune(program_options& program) {
  auto arguments = std::make_shared<prune_arguments>();
  command_options command = program.add_command(
      "prune", "Delete from servers what runs left behind that were replaced, forgotten or cut off",
      [arguments] { return run_prune(*arguments); });
  command.arguments(
      "url", arguments->servers,
      "clickhouse://[user[:password]@]host[:port]/database; of a cluster every server");
  command.count("--hours", arguments->hours,
                "Loads without an end count as cut off after so many hours (24 unless told)");
  arguments->output.add_to(command);
  command.example("kivdb prune clickhouse://a.lan/kiv clickhouse://b.lan/kiv");
}

}  // namespace kiv::db
