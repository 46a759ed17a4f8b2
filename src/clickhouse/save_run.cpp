#include <chrono>
#include <ctime>
#include <set>
#include <thread>

#include "clickhouse/import_number.h"
#include "clickhouse/profile_rows.h"
#include "clickhouse/row_inserter.h"
#include "clickhouse/schema.h"
#include "clickhouse/server_store.h"
#include "util/printable.h"

namespace kiv::clickhouse {
namespace {

using store::save_result;

std::string local_time() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  char text[32];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts)};
}

}  // namespace

server_failure server_store::send(const run_profile& run, const store::save_options& options,
                                  std::int64_t import, std::string& error) {
  const server_url& url = server_.url();
  const load_id load{run.name, import};
  const auto insert = [&](std::string_view table, std::string rows) {
    return pool_.insert(insert_table(table, url.cluster), std::move(rows));
  };
  std::optional<std::uint64_t> row_count;
  bool done =
      insert_list_rows(load, run,
                       [&](std::string rows) { return insert("list_stored", std::move(rows)); }) &&
      insert("block_group_stored", block_group_rows(load, run)) &&
      insert("name_sum_stored", name_sum_rows(load, run)) &&
      insert("trace_stored", trace_rows(load, run, options.labels));
  if (done && options.rows) {
    row_inserter target(pool_, url, load);
    row_count = options.rows(target, run, error);
    done = row_count.has_value();
  }
  server_failure failure = pool_.finish();
  if (failure || !done) return failure;
  return server_.execute(
      "INSERT INTO " + insert_table("import_stored", url.cluster) + " FORMAT TabSeparated",
      import_row(load, run, options, local_time(), row_count));
}

save_result server_store::save(const run_profile& run, const store::save_options& options,
                               std::string& error) {
  error = store::duplicate_of(run);
  if (!error.empty()) return save_result::refused_duplicate;
  const auto stored = find(run.name, error, true);
  if (!stored) return save_result::failed;
  const std::string incomplete = store::why_incomplete(run);
  if (stored->import != 0 && stored->complete && !incomplete.empty()) {
    error = incomplete;
    return save_result::refused_incomplete;
  }
  using clock = std::chrono::steady_clock;
  const auto end = clock::now() + std::chrono::seconds(server_.url().timeout);
  std::int64_t newest = stored->newest;
  auto pause = std::chrono::milliseconds(200);
  for (;;) {
    newest = next_import(newest);
    error.clear();
    const server_failure failure = send(run, options, newest, error);
    if (!failure && error.empty()) {
      return stored->import != 0 ? save_result::replaced : save_result::saved;
    }
    if (failure) error = in_words(failure, server_.url());
    // Rows that may be there or not are left behind: what counts is a load of its own.
    if (failure.kind != failure_kind::unclear || clock::now() + pause > end) break;
    std::this_thread::sleep_for(pause);
    pause *= 2;
  }
  return save_result::failed;
}

bool server_store::forget(std::span<const std::string> names, std::string& error) {
  std::string rows;
  for (const auto& name : std::set<std::string_view>(names.begin(), names.end())) {
    const auto stored = find(name, error);
    if (!stored) return false;
    if (stored->import == 0) {
      error = "no run " + quoted_name(name);
      return false;
    }
    rows += deleted_import_row({name, next_import(stored->newest)}, local_time());
  }
  if (rows.empty()) return true;
  const server_failure failure =
      server_.execute("INSERT INTO " + insert_table("import_stored", server_.url().cluster) +
                          " FORMAT TabSeparated",
                      rows);
  if (failure) error = in_words(failure, server_.url());
  return !failure;
}

}  // namespace kiv::clickhouse
