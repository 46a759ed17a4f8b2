#include "kivdb/open_runs.h"

#include "clickhouse/server_store.h"
#include "rows/row_tables.h"
#include "store/run_store.h"

namespace kiv::db {
namespace {

std::unique_ptr<clickhouse::server_store> open_server(const std::string& text, std::string& error) {
  const auto url = clickhouse::parse_server_url(text, error);
  return url ? std::make_unique<clickhouse::server_store>(*url) : nullptr;
}

}  // namespace

std::unique_ptr<store::run_source> open_runs(const std::string& source, std::string& error) {
  if (clickhouse::is_server_url(source)) return open_server(source, error);
  auto database = std::make_unique<store::run_store>();
  if (!database->open(source, store::open_mode::read_only, error)) return nullptr;
  return database;
}

std::unique_ptr<store::run_target> open_target(const std::string& target, target_use use,
                                               std::string& error) {
  if (clickhouse::is_server_url(target)) return open_server(target, error);
  // Reading first: what does not exist is not to be made.
  if (use == target_use::forget && !open_runs(target, error)) return nullptr;
  auto database = std::make_unique<store::run_store>(rows::row_schema_sql());
  if (!database->open(target, store::open_mode::create, error)) return nullptr;
  return database;
}

}  // namespace kiv::db
