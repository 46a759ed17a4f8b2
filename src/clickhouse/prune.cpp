#include "clickhouse/prune.h"

#include <chrono>
#include <set>
#include <thread>

#include "clickhouse/import_number.h"
#include "clickhouse/literals.h"
#include "clickhouse/result_cursor.h"
#include "clickhouse/schema.h"
#include "clickhouse/server.h"

namespace kiv::clickhouse {
namespace {

using imports = std::set<std::int64_t>;

constexpr std::string_view entry_table = "import_stored";

class pruner {
 public:
  pruner(const server_url& url, std::string& error) : url_(url), server_(url), error_(error) {}

  // What a SELECT of one column finds.
  bool find(const std::string& sql, imports& found) {
    result_cursor rows(server_, sql, "n");
    while (rows.step()) found.insert(rows.integer(0));
    if (rows.failed()) error_ = rows.error();
    return !rows.failed();
  }

  bool erase(std::string_view table, const imports& which) {
    constexpr std::size_t most_at_once = 5000;  // statements are bounded
    for (auto next = which.begin(); next != which.end();) {
      std::string list;
      for (std::size_t i = 0; i < most_at_once && next != which.end(); ++i, ++next) {
        if (!list.empty()) list += ", ";
        list += std::to_string(*next);
      }
      const server_failure failure = server_.execute("ALTER TABLE " + std::string(table) +
                                                     " DELETE WHERE import IN (" + list + ")");
      if (failure) {
        error_ = in_words(failure, url_);
        return false;
      }
    }
    return true;
  }

  // Rows vanish some time after the server was told to delete them.
  bool wait() {
    using clock = std::chrono::steady_clock;
    const auto end = clock::now() + std::chrono::seconds(url_.timeout);
    for (;;) {
      result_cursor left(server_,
                         "SELECT count() AS left FROM system.mutations WHERE is_done = 0 "
                         "AND database = " +
                             text_literal(url_.database),
                         "n");
      const bool done = left.step() && left.integer(0) == 0;
      while (left.step()) {
      }
      if (left.failed()) error_ = left.error();
      if (done || left.failed()) return done;
      if (clock::now() > end) {
        error_ = "server " + url_.address() + ": is still deleting";
        return false;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
  }

 private:
  const server_url& url_;
  server server_;
  std::string& error_;
};

}  // namespace

std::optional<std::size_t> prune(const server_url& url, std::int64_t hours, std::string& error) {
  pruner work(url, error);
  const std::string stale_entries =
      "SELECT import FROM import_stored WHERE (run, import) NOT IN "
      "(SELECT run, max(import) FROM import_stored GROUP BY run)";
  // The mark of a forgotten run stays as long as an entry that it hides.
  const std::string lone_marks =
      "SELECT newest FROM (SELECT run, max(import) AS newest, argMax(deleted, import) AS gone, "
      "count() AS loads FROM import_stored GROUP BY run) WHERE gone = 1 AND loads = 1";
  const std::string too_old = std::to_string(import_hours_ago(hours));
  imports all, old_entries, marks;
  if (!work.find(stale_entries, old_entries) || !work.find(lone_marks, marks)) return std::nullopt;
  const std::string unseen =
      " WHERE import NOT IN (SELECT import FROM newest_import) AND (import < " + too_old +
      " OR import IN (SELECT import FROM import_stored))";
  for (const auto& table : stored_tables()) {
    if (table == entry_table) continue;
    imports stale;
    std::string sql = "SELECT DISTINCT import FROM ";
    sql.append(table).append(unseen);
    if (!work.find(sql, stale) || !work.erase(table, stale)) return std::nullopt;
    all.insert(stale.begin(), stale.end());
  }
  all.insert(old_entries.begin(), old_entries.end());
  all.insert(marks.begin(), marks.end());
  // Entries last, so that what was not deleted is found by the next time.
  if (!work.wait() || !work.erase(entry_table, old_entries) || !work.erase(entry_table, marks) ||
      !work.wait()) {
    return std::nullopt;
  }
  return all.size();
}

}  // namespace kiv::clickhouse
