#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::clickhouse {

// A statement of the schema with the line that says what it is for.
struct schema_statement {
  std::string comment, sql;
};

// The statements that make tables and views where they are not there yet, one after another. For a
// server alone, or, with the name of a cluster, for each of its servers: there, views are of one
// shard, and tables over them are of all, in the database of that name.
std::vector<schema_statement> schema_statements(std::string_view cluster,
                                                std::string_view database);

// The same as text.
std::string schema_sql(std::string_view cluster, std::string_view database);

// The tables that loads write, each with what it holds of a run.
std::vector<std::string> stored_tables();

// The condition that rows are of a run. Names the partition too, by the beginning of its parts'
// names: the server knows which it is, but not that it need not look into the others.
std::string rows_of(std::string_view run);

// Where rows for one of them are to be inserted: it, or the table over all shards.
std::string insert_table(std::string_view stored, std::string_view cluster);

// The SELECT of a view over all shards, in the order of SQLite's; of one load alone when `run` is
// given. Empty when there is no such view.
struct one_load {
  std::string_view run;
  std::int64_t import;
};
std::string select_of_view(std::string_view view, std::string_view database,
                           std::string_view cluster, const one_load* only);

}  // namespace kiv::clickhouse
