#include "clickhouse/setup.h"

#include "clickhouse/literals.h"
#include "clickhouse/schema.h"
#include "clickhouse/server.h"

namespace kiv::clickhouse {

bool set_up(const server_url& url, std::string& error) {
  server target(url);
  server_failure failure = target.execute_without_database("CREATE DATABASE IF NOT EXISTS " +
                                                           quoted_identifier(url.database));
  for (const auto& statement : schema_statements(url.cluster, url.database)) {
    if (failure) break;
    failure = target.execute(statement.sql);
  }
  if (failure) error = in_words(failure, url);
  return !failure;
}

}  // namespace kiv::clickhouse
