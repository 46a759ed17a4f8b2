#include "store/run_store.h"

#include <algorithm>
#include <set>
#include <utility>

#include "store/profile_tables.h"
#include "store/query.h"
#include "store/run_list.h"
#include "store/sqlite_row_target.h"
#include "store/view_catalogue.h"
#include "util/printable.h"

namespace kiv::store {
namespace {

std::string identifier(std::string_view name) {
  std::string text = "\"";
  for (const char c : name) text += c == '"' ? std::string("\"\"") : std::string(1, c);
  return text + '"';
}

}  // namespace

bool run_store::open(const std::string& path, open_mode mode, std::string& error) {
  close();
  path_ = path;
  const bool opened = mode == open_mode::read_only ? open_for_reading(db_, path, error)
                                                   : open_for_imports(db_, path, creation_, error);
  if (!opened) close();
  return opened;
}

void run_store::close() {
  if (db_.is_open() && creation_.held()) remove_when_empty(db_, path_);
  db_.close();
  creation_.release();
}

save_result run_store::save(const run_profile& run, const save_options& options,
                            std::string& error) {
  error = duplicate_of(run);
  if (!error.empty()) return save_result::refused_duplicate;
  const save_result result = save_within(run, options, error);
  if (result == save_result::saved || result == save_result::replaced) {
    creation_.release();
    use_write_ahead_log(db_);
    empty_write_ahead_log(db_);
  }
  return result;
}

save_result run_store::save_within(const run_profile& run, const save_options& options,
                                   std::string& error) {
  const auto fail = [&] {
    error = db_.error();
    return save_result::failed;
  };
  transaction work(db_, transaction::kind::write);
  if (!work.begun()) return fail();
  if (is_empty(db_) && !make_schema(db_)) return fail();

  statement stored = db_.prepare("SELECT complete FROM run WHERE name = ?");
  if (!stored) return fail();
  stored.bind(1, std::string_view(run.name));
  const bool replaces = stored.step();
  if (stored.failed()) return fail();
  const std::string incomplete = why_incomplete(run);
  if (replaces && stored.number(0) != 0 && !incomplete.empty()) {
    error = incomplete;
    return save_result::refused_incomplete;
  }
  stored = {};
  if (replaces && !forget_run(run.name)) return fail();

  statement insert = db_.prepare(
      "INSERT INTO run (name, source, imported_at, complete) VALUES "
      "(?, ?, strftime('%Y-%m-%d %H:%M:%S', 'now', 'localtime'), ?)");
  if (!insert) return fail();
  insert.bind(1, std::string_view(run.name));
  insert.bind(2, std::string_view(options.source));
  insert.bind(3, std::int64_t{incomplete.empty()});
  if (!insert.run()) return fail();
  const std::int64_t key = sqlite3_last_insert_rowid(db_.handle());
  if (!write_labels(db_, key, options.labels)) return fail();
  for (const auto& trace : run.traces) {
    if (!write_profile(db_, key, trace)) return fail();
  }
  if (options.rows) {
    sqlite_row_target target(db_, row_schema_, run.name);
    const auto rows = options.rows(target, run, error);
    if (!rows) return save_result::failed;
    statement note = db_.prepare("UPDATE run SET row_count = ?1 WHERE run = ?2");
    if (!note) return fail();
    note.bind(1, static_cast<std::int64_t>(*rows));
    note.bind(2, key);
    if (!note.run()) return fail();
  }
  if (!work.commit()) return fail();
  return replaces ? save_result::replaced : save_result::saved;
}

bool run_store::forget_run(std::string_view name) {
  std::vector<std::string> tables;
  statement list = db_.prepare("SELECT name FROM row_table");
  while (list && list.step()) tables.emplace_back(list.text(0));
  if (!list || list.failed()) return false;
  for (const auto& table : tables) {
    statement rows = db_.prepare("DELETE FROM " + identifier(table) + " WHERE run_id = ?");
    if (!rows) return false;
    rows.bind(1, name);
    if (!rows.run()) return false;
  }
  statement run = db_.prepare("DELETE FROM run WHERE name = ?");
  if (!run) return false;
  run.bind(1, name);
  return run.run();
}

bool run_store::forget(std::span<const std::string> names, std::string& error) {
  const auto fail = [&] {
    error = db_.error();
    return false;
  };
  transaction work(db_, transaction::kind::write);
  if (!work.begun()) return fail();
  for (const auto& name : std::set<std::string_view>(names.begin(), names.end())) {
    if (!has_run(name, error)) return false;
    if (!forget_run(name)) return fail();
  }
  if (!work.commit()) return fail();
  empty_write_ahead_log(db_);
  return true;
}

bool run_store::has_run(std::string_view name, std::string& error) {
  statement find = db_.prepare("SELECT 1 FROM run WHERE name = ?");
  if (find) find.bind(1, name);
  if (find && find.step()) return true;
  error = !find || find.failed() ? db_.error() : "no run " + quoted_name(name);
  return false;
}

std::optional<std::vector<run_info>> run_store::runs(std::string& error) {
  return read_run_list(db_, error);
}

std::optional<std::string> run_store::latest_run(std::string& error) {
  statement latest = db_.prepare("SELECT name FROM run ORDER BY run DESC LIMIT 1");
  if (latest && latest.step()) return std::string(latest.text(0));
  error = !latest || latest.failed() ? db_.error() : "holds no runs";
  return std::nullopt;
}

std::optional<run_profile> run_store::load(std::string_view name, std::string& error) {
  const transaction snapshot(db_, transaction::kind::read);
  run_profile run;
  run.name = name;
  statement traces = db_.prepare(
      "SELECT t.trace FROM run r LEFT JOIN trace t ON t.run = r.run WHERE r.name = ? ORDER BY 1");
  bool found = false;
  if (traces) traces.bind(1, name);
  while (traces && traces.step()) {
    found = true;
    if (traces.type(0) == SQLITE_NULL) continue;
    if (!read_profile(db_, traces.number(0), run.traces.emplace_back(), error)) return std::nullopt;
  }
  if (!traces || traces.failed()) {
    error = db_.error();
    return std::nullopt;
  }
  if (found) return run;
  error = "no run " + quoted_name(name);
  return std::nullopt;
}

std::unique_ptr<row_cursor> run_store::view(std::string_view view,
                                            const std::optional<std::string>& run,
                                            std::string& error) {
  const auto* found = find_view(view);
  if (found == nullptr) {
    error = "no view " + quoted_name(view) + "; `kivdb views` lists them";
    return nullptr;
  }
  if (!run) return prepare_query(db_, "SELECT * FROM " + std::string(found->name), {}, error);
  if (!has_run(*run, error)) return nullptr;
  return prepare_query(db_, select_of_one_run(*found), {*run}, error);
}

std::unique_ptr<row_cursor> run_store::select(std::string_view sql,
                                              const std::vector<std::string>& texts,
                                              std::string& error) {
  return prepare_query(db_, sql, texts, error);
}

}  // namespace kiv::store
