#include <iostream>
#include <memory>

#include "clickhouse/schema.h"
#include "kivdb/commands.h"
#include "kivdb/messages.h"

namespace kiv::db {
namespace {

struct schema_arguments {
  std::string engine;
  std::string cluster, database = "kiv";
};

int run_schema(const schema_arguments& arguments) {
  std::cout << clickhouse::schema_sql(arguments.cluster, arguments.database);
  return finish_output();
}

}  // namespace

void add_schema(program_options& program) {
  auto arguments = std::make_shared<schema_arguments>();
  command_options command =
      program.add_command("schema", "Print the statements that make a database on a server",
                          [arguments] { return run_schema(*arguments); });
  command.required_choice("engine", arguments->engine, {"clickhouse"},
                          "What the server is: clickhouse");
  command.option("--cluster", arguments->cluster,
                 "For each server of this cluster: tables over all of its shards too");
  command.option("--database", arguments->database,
                 "The database that they will be in, with --cluster (kiv unless told)");
  command.example("kivdb schema clickhouse --cluster fleet");
}

}  // namespace kiv::db
