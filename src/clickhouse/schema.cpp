#include "clickhouse/schema.h"

#include <algorithm>
#include <array>
#include <span>

#include "clickhouse/list_columns.h"
#include "clickhouse/literals.h"
#include "clickhouse/row_schema.h"
#include "util/embedded_text.h"
#include "util/sql_views.h"

namespace kiv {
std::span<const embedded_text> clickhouse_sql();
std::span<const embedded_text> clickhouse_views();
}  // namespace kiv

namespace kiv::clickhouse {
namespace {

constexpr std::string_view stored_suffix = "_stored", all_suffix = "_everywhere",
                           shard_suffix = "_shard";
constexpr std::string_view newest = "import IN (SELECT import FROM newest_import)";
constexpr std::string_view from = "FROM ";

// The newest loads of runs that were not deleted. Each shard has those of its own runs.
constexpr std::string_view newest_import =
    "CREATE VIEW IF NOT EXISTS newest_import AS\nSELECT run, newest AS import FROM (\n"
    "  SELECT run, max(import) AS newest, argMax(deleted, import) AS gone FROM import_stored "
    "GROUP BY run\n)\nWHERE gone = 0";

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

std::span<const sql_view> views() {
  static const auto all = read_sql_views(clickhouse_views(), find_text(clickhouse_sql(), "macros"));
  return all;
}

std::string without_order(const std::string& select) {
  return select.substr(0, select.rfind("\nORDER BY "));
}

class schema_maker {
 public:
  schema_maker(std::string_view cluster, std::string_view database)
      : cluster_(cluster), database_(database) {}

  void add_stored(std::string_view comment, std::string_view name, std::string sql) {
    add(std::string(comment), std::move(sql));
    if (!cluster_.empty())
      add({}, over_shards(insert_table(name, cluster_), name, ", cityHash64(run)"));
  }

  void add_view(const std::string& name, std::string_view comment, const std::string& select,
                bool whole = false) {
    if (cluster_.empty() || whole) {
      return add(std::string(comment), "CREATE VIEW IF NOT EXISTS " + name + " AS\n" +
                                           (cluster_.empty() ? of_this_server(select) : select));
    }
    const std::string shard = name + std::string(shard_suffix);
    add(std::string(comment), "CREATE VIEW IF NOT EXISTS " + shard + " AS\n" + select);
    add({}, over_shards(name, shard, {}));  // nothing is inserted through it
  }

  void add(std::string comment, std::string sql) {
    made_.push_back({std::move(comment), std::move(sql)});
  }
  std::vector<schema_statement> take() { return std::move(made_); }

 private:
  static std::string of_this_server(std::string select) {
    return replaced(std::move(select), all_suffix, stored_suffix);
  }
  // The name of the database stands in it, since there is no present one when a server starts.
  std::string over_shards(std::string_view name, std::string_view of,
                          std::string_view sharding) const {
    return "CREATE TABLE IF NOT EXISTS " + std::string(name) + " AS " + std::string(of) +
           "\nENGINE = Distributed(" + text_literal(cluster_) + ", " + text_literal(database_) +
           ", " + text_literal(of) + std::string(sharding) + ")";
  }

  std::string_view cluster_, database_;
  std::vector<schema_statement> made_;
};

std::string select_of_list(const list_columns& list) {
  std::string select = "SELECT run, import, trace";
  if (list.columns.find(" place") == std::string_view::npos) select += ", place";
  std::string_view rest = list.columns;
  while (!rest.empty()) {
    const auto comma = std::min(rest.find(", "), rest.size());
    const auto column = rest.substr(0, comma);
    rest.remove_prefix(std::min(comma + 2, rest.size()));
    select += std::string(", ") + (column[0] == 'n' ? "numbers[" : "texts[") + column[1] + "] AS " +
              std::string(column.substr(3));
  }
  return select + "\nFROM list_stored\nWHERE " + std::string(newest) +
         " AND list = " + text_literal(list.name);
}

// The tables of tables.sql: each a comment, if any, and a statement.
std::vector<schema_statement> statements_of(std::string_view text) {
  std::vector<schema_statement> all;
  while (!text.empty()) {
    const auto end = std::min(text.find(";\n"), text.size());
    std::string_view one = text.substr(0, end);
    text.remove_prefix(std::min(end + 2, text.size()));
    schema_statement& next = all.emplace_back();
    while (!one.empty() && (one[0] == '\n' || one.starts_with("--"))) {
      const auto line = std::min(one.find('\n') + 1, one.size());
      if (one[0] != '\n') next.comment += one.substr(0, line);
      one.remove_prefix(line);
    }
    next.sql = one;
  }
  return all;
}

std::string name_of_table(std::string_view create) {
  constexpr std::string_view start = "CREATE TABLE IF NOT EXISTS ";
  create.remove_prefix(std::min(start.size(), create.size()));
  return std::string(create.substr(0, create.find(' ')));
}

// A table that loads write, as views name it, without the end of its name; else nothing.
std::string_view stored_name(std::string_view table) {
  for (const std::string_view suffix : {stored_suffix, all_suffix}) {
    if (table.ends_with(suffix)) return table.substr(0, table.size() - suffix.size());
  }
  return {};
}

bool is_of_all_shards(const sql_view& view) {
  return view.select.find(all_suffix) != std::string::npos;
}

}  // namespace

std::string insert_table(std::string_view stored, std::string_view cluster) {
  if (cluster.empty()) return std::string(stored);
  return std::string(stored.substr(0, stored.size() - stored_suffix.size())) +
         std::string(all_suffix);
}

std::string rows_of(std::string_view run) {
  const std::string name = text_literal(run);
  return "run = " + name + " AND _part LIKE concat(toString(sipHash64(" + name +
         ") % 16), '\\\\_%')";
}

std::vector<std::string> stored_tables() {
  std::vector<std::string> names;
  for (const auto& table : statements_of(find_text(clickhouse_sql(), "tables"))) {
    names.push_back(name_of_table(table.sql));
  }
  for (const auto& table : row_tables()) names.push_back(table.stored);
  return names;
}

std::vector<schema_statement> schema_statements(std::string_view cluster,
                                                std::string_view database) {
  schema_maker schema(cluster, database);
  for (const auto& table : statements_of(find_text(clickhouse_sql(), "tables"))) {
    schema.add_stored(table.comment, name_of_table(table.sql), table.sql);
  }
  for (const auto& table : row_tables()) schema.add_stored({}, table.stored, table.create);
  schema.add("-- The loads that count.\n", std::string(newest_import));
  for (const auto& list : profile_lists) {
    schema.add_view(std::string(list.name), {}, select_of_list(list));
  }
  for (const auto& table : row_tables()) schema.add_view(table.name, {}, table.select);
  for (const auto& view : views()) {
    schema.add_view(std::string(view.name), "-- " + std::string(view.description) + '\n',
                    without_order(view.select), is_of_all_shards(view));
  }
  return schema.take();
}

std::string schema_sql(std::string_view cluster, std::string_view database) {
  std::string text;
  for (const auto& statement : schema_statements(cluster, database)) {
    text += (text.empty() ? "" : "\n") + statement.comment + statement.sql + ";\n";
  }
  return text;
}

std::string select_of_view(std::string_view view, std::string_view database,
                           std::string_view cluster, const one_load* only) {
  const auto found = std::ranges::find(views(), view, &sql_view::name);
  if (found == views().end()) return {};
  const std::string in = quoted_identifier(database) + ".";
  const std::string which =
      only != nullptr ? rows_of(only->run) + " AND import = " + std::to_string(only->import)
                      : "import IN (SELECT import FROM " + in + "newest_import)";
  // What is put in is not looked at again: a name of a run may hold anything.
  std::string sql;
  for (std::string_view rest = found->select; !rest.empty();) {
    const auto next = std::min(rest.find(newest), rest.find(from));
    sql += rest.substr(0, next);
    if (next == std::string_view::npos) break;
    rest.remove_prefix(next);
    if (rest.starts_with(newest)) {
      sql += which;
      rest.remove_prefix(newest.size());
      continue;
    }
    rest.remove_prefix(from.size());
    const std::string_view table = rest.substr(0, rest.find_first_of(" \n)"));
    sql += from;
    if (const std::string_view stored = stored_name(table); !stored.empty()) {
      sql += in + insert_table(std::string(stored) + std::string(stored_suffix), cluster);
      rest.remove_prefix(table.size());
    }
  }
  return sql;
}

}  // namespace kiv::clickhouse
