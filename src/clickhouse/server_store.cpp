#include "clickhouse/server_store.h"

#include "clickhouse/read_run.h"
#include "clickhouse/result_cursor.h"
#include "clickhouse/schema.h"
#include "clickhouse/select_text.h"
#include "store/run_columns.h"
#include "store/view_catalogue.h"
#include "util/printable.h"

namespace kiv::clickhouse {
namespace {

// The columns of `runs` in the order of the view run_list, and the labels.
store::run_info read_info(const result_cursor& row, bool& fits) {
  using store::row_count_column;
  store::run_info run = store::read_run_columns([&](int column) { return row.text(column); },
                                                [&](int column) { return row.integer(column); });
  if (row.type(row_count_column) != store::value_type::null) {
    run.rows = static_cast<std::uint64_t>(row.integer(row_count_column));
  }
  std::vector<std::string> keys, values;
  fits = fits && read_array(row.raw(row_count_column + 1), keys) &&
         read_array(row.raw(row_count_column + 2), values) && keys.size() == values.size();
  for (std::size_t i = 0; fits && i < keys.size(); ++i) run.labels.emplace_back(keys[i], values[i]);
  return run;
}

}  // namespace

std::optional<std::vector<store::run_info>> server_store::runs(std::string& error) {
  const server_url& url = server_.url();
  std::string sql = select_of_view("run_list", url.database, url.cluster, nullptr);
  const std::string_view last_column = "row_count";
  sql.replace(sql.find(last_column), last_column.size(), "row_count, label_keys, label_values");
  // Texts, counts, four amounts, the number of rows, and labels.
  result_cursor rows(server_, sql,
                     "ttt"
                     "nnnn"
                     "nnnnnnnnnnnn"
                     "n"
                     "tt");
  std::vector<store::run_info> all;
  bool fits = true;
  while (rows.step()) all.push_back(read_info(rows, fits));
  if (!rows.failed() && fits) return all;
  error = rows.failed() ? rows.error() : "the database is damaged: labels do not fit together";
  return std::nullopt;
}

std::optional<std::string> server_store::latest_run(std::string& error) {
  const server_url& url = server_.url();
  std::string sql = "SELECT run FROM " + insert_table("import_stored", url.cluster) +
                    " WHERE import IN (SELECT import FROM " + quoted_identifier(url.database) +
                    ".newest_import) ORDER BY import DESC LIMIT 1";
  result_cursor rows(server_, sql, "t");
  if (rows.step()) return std::string(rows.text(0));
  error = rows.failed() ? rows.error() : "holds no runs";
  return std::nullopt;
}

std::optional<server_store::stored_run> server_store::find(std::string_view name,
                                                           std::string& error, bool for_load) {
  // What is loaded gets a number above those of all runs; who asks needs not look at them.
  const std::string condition = for_load ? "run = " + text_literal(name) : "1";
  const auto of_run = [&](const std::string& function, const std::string& column) {
    return function + "If(" + column + "import, " + condition + ")";
  };
  std::string sql = "SELECT max(import) AS newest, " + of_run("max", "") + " AS own, " +
                    of_run("argMax", "deleted, ") + " AS gone, " + of_run("argMax", "complete, ") +
                    " AS whole, " + of_run("argMax", "traces, ") + " AS trace_count FROM " +
                    insert_table("import_stored", server_.url().cluster);
  if (!for_load) sql += " WHERE " + rows_of(name);
  result_cursor row(server_, sql, "nnnnn", for_load);
  stored_run found;
  if (row.step()) {
    found.newest = row.integer(0);
    const bool gone = row.integer(2) != 0;
    found.import = gone ? 0 : row.integer(1);
    found.complete = row.integer(3) != 0;
    found.traces = static_cast<std::size_t>(row.integer(4));
    while (row.step()) {
    }
  }
  if (!row.failed()) return found;
  error = row.error();
  return std::nullopt;
}

bool server_store::has_run(std::string_view name, std::string& error) {
  const auto found = find(name, error);
  if (found && found->import == 0) error = "no run " + quoted_name(name);
  return found && found->import != 0;
}

std::optional<run_profile> server_store::load(std::string_view name, std::string& error) {
  const auto found = find(name, error);
  if (!found) return std::nullopt;
  if (found->import != 0) return read_run(server_, {name, found->import}, found->traces, error);
  error = "no run " + quoted_name(name);
  return std::nullopt;
}

std::unique_ptr<store::row_cursor> server_store::view(std::string_view view,
                                                      const std::optional<std::string>& run,
                                                      std::string& error) {
  const server_url& url = server_.url();
  if (store::find_view(view) == nullptr) {
    error = "no view " + quoted_name(view) + "; `kivdb views` lists them";
    return nullptr;
  }
  one_load only{};
  if (run) {
    const auto found = find(*run, error);
    if (!found) return nullptr;
    if (found->import == 0) {
      error = "no run " + quoted_name(*run);
      return nullptr;
    }
    only = {*run, found->import};
  }
  const auto sql = select_of_view(view, url.database, url.cluster, run ? &only : nullptr);
  return std::make_unique<result_cursor>(url, sql);
}

std::unique_ptr<store::row_cursor> server_store::select(std::string_view sql,
                                                        const std::vector<std::string>& texts,
                                                        std::string& error) {
  if (!is_select(sql)) {
    error = "only a SELECT is possible";
    return nullptr;
  }
  auto rows = std::make_unique<result_cursor>(server_.url(), with_texts(sql, texts));
  const server_failure& failure = rows->failure();
  if (failure.kind != failure_kind::statement && failure.code != server_code::readonly) return rows;
  error = failure.code == server_code::readonly ? "only a SELECT is possible" : failure.text;
  return nullptr;
}

}  // namespace kiv::clickhouse
