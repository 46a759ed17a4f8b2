#include "importer.h"

#include <algorithm>
#include <span>

#include "block_groups.h"
#include "csv_reader.h"
#include "tables/csv_names.h"
#include "printable.h"
#include "row_stream.h"
#include "table_writer.h"
#include "views.h"

namespace kiv::db {
namespace {

constexpr std::size_t kept_of_rejected_row = 200;
// Run ids that differ in bytes which no file name may hold share their files.
constexpr std::size_t max_spellings = 16;

// Tables to read the separators off, the surest first.
constexpr std::string_view for_data_separator[] = {"runs", "memory", "marker",
                                                   "sbrk", "arena",  "queryevents"};
constexpr std::string_view for_fun_separator[] = {"memory", "sbrk", "arena", "queryevents"};

}  // namespace

// The import of one run.
class importer::run_import {
 public:
  run_import(importer& owner, const run_plan& run, import_result& result)
      : owner_(owner), db_(owner.db_), run_(run), result_(result) {}

  bool all() {
    if (!choose_separators()) return false;
    transaction work(db_);
    if (!work.begun()) return fail_database();
    reject_ = db_.prepare("INSERT INTO rejected_rows VALUES (?, ?, ?, ?, ?)");
    if (!reject_ || !forget(run_.run_id)) return fail_database();
    for (const auto& file : run_.files) {
      if (!import_file(file)) return false;
    }
    return store_views() && note_import() && (work.commit() || fail_database());
  }

 private:
  bool fail(const std::string& what) {
    owner_.error_ = what;
    return false;
  }
  bool fail_database() { return fail("cannot write the database: " + db_.last_error()); }

  // Calls `detect` with the first row of the first file that has one, of each table in turn.
  template <typename Detect>
  std::optional<char> detect(std::span<const std::string_view> tables, Detect detect_in) const {
    for (const auto& table : tables) {
      for (const auto& file : run_.files) {
        if (file.table->name != table || file.size == 0) continue;
        csv_reader reader(file.path, file.table->end);
        std::string_view row;
        if (reader.next(row) != row_status::row) continue;
        if (const auto found = detect_in(row, *file.table)) return found;
      }
    }
    return std::nullopt;
  }

  bool choose_separators() {
    auto& seps = result_.seps;
    seps.data = owner_.options_.data_separator.value_or(
        detect(for_data_separator, [](std::string_view row, const csv_table&) {
          return detect_data_separator(row);
        }).value_or(';'));
    const auto fun = detect(for_fun_separator, [&](std::string_view row, const csv_table& table) {
      return detect_fun_separator(row, table, seps.data);
    });
    seps.fun = owner_.options_.fun_separator.value_or(fun.value_or(seps.data));
    if (usable_separator(seps.data) && usable_separator(seps.fun)) return true;
    return fail("a digit as separator cannot be told from the numbers around it");
  }

  // Deletes what the database holds of a run.
  bool forget(const std::string& run_id) {
    if (spellings_.size() >= max_spellings) return false;
    spellings_.push_back(run_id);
    std::vector<std::string> tables = {"imports", "rejected_rows"};
    for (const auto& table : csv_tables()) tables.emplace_back(table.name);
    for (const auto& v : views()) {
      if (v.stored) tables.push_back(v.name);
    }
    for (const auto& table : tables) {
      // Without a condition the pages are dropped whole.
      statement other = db_.prepare("SELECT 1 FROM " + table + " WHERE run_id <> ? LIMIT 1");
      if (!other) return false;
      other.bind(1, std::string_view(run_id));
      const bool only_this = !other.step() && spellings_.size() == 1;
      if (other.failed()) return false;
      statement del = db_.prepare("DELETE FROM " + table + (only_this ? "" : " WHERE run_id = ?"));
      if (!del) return false;
      if (!only_this) del.bind(1, std::string_view(run_id));
      if (!del.run()) return false;
    }
    return true;
  }

  // Whether a row with this run id belongs into the run's files.
  bool accepts_run_id(std::string_view run_id) {
    if (std::ranges::find(spellings_, run_id) != spellings_.end()) return true;
    return safe_runid(run_id) == run_.run_id && forget(std::string(run_id));
  }

  bool import_file(const db::import_file& file) {
    row_stream stream(file.path, *file.table, result_.seps);
    if (!stream.is_open()) return fail(file.path + ": cannot be opened; the run was not imported");
    table_writer writer(db_, *file.table);
    if (!writer.is_ready()) return fail_database();

    file_result counts;
    row_batch batch;
    while (stream.next(batch)) {
      for (const auto& row : batch.rows) {
        if (!import_row(file, row, writer, counts)) return fail_database();
      }
      owner_.progress_.advance(batch.file_bytes, batch.rows.size());
    }
    if (stream.failed()) return fail(file.path + ": cannot be read; the run was not imported");
    result_.rows += counts.rows;
    result_.rejected += counts.rejected;
    if (counts.rejected > 0) {
      result_.rejected_files.push_back(file.path + ": " + std::to_string(counts.rejected) +
                                       " rejected, the first in " + counts.first_reason);
    }
    return true;
  }

  struct file_result {
    std::uint64_t rows = 0, rejected = 0;
    std::string first_reason;
  };

  // False when the database could not be written.
  bool import_row(const db::import_file& file, const parsed_row& row, table_writer& writer,
                  file_result& counts) {
    std::string reason = row.reason;
    if (!row.columns.empty()) {
      const std::string_view run_id = row.columns[0].text;
      if (run_id != last_run_id_ && !accepts_run_id(run_id)) {
        reason = "run id '" + printable(run_id.substr(0, 40)) + "' in a file of another run";
      } else {
        last_run_id_ = run_id;
      }
    }
    if (!reason.empty()) {
      if (counts.rejected++ == 0) {
        counts.first_reason = "line " + std::to_string(row.line) + ": " + reason;
      }
      return reject(file, row.line, reason, row.text);
    }
    if (row.columns.empty()) return true;
    ++counts.rows;
    return writer.write(row.columns);
  }

  bool reject(const db::import_file& file, std::uint64_t line, const std::string& reason,
              std::string_view row) {
    reject_.bind(1, std::string_view(run_.run_id));
    reject_.bind(2, std::string_view(file.path));
    reject_.bind(3, static_cast<std::int64_t>(line));
    reject_.bind(4, std::string_view(reason));
    const std::string begin = printable(row.substr(0, kept_of_rejected_row));
    reject_.bind(5, std::string_view(begin));
    return reject_.run();
  }

  bool store_views() {
    for (const auto& v : views()) {
      if (!v.stored) continue;
      for (const auto& run_id : spellings_) {
        if (v.name == "block_groups") {
          if (!fill_block_groups(db_, run_id)) return fail_database();
          continue;
        }
        statement fill = db_.prepare("INSERT INTO " + v.name + " SELECT * FROM " + v.name +
                                     "_query WHERE run_id = ?");
        if (!fill) return fail_database();
        fill.bind(1, std::string_view(run_id));
        if (!fill.run()) return fail_database();
      }
    }
    return true;
  }

  bool note_import() {
    statement note = db_.prepare(
        "INSERT INTO imports VALUES (?, ?, strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime'), ?, "
        "?, ?, ?)");
    if (!note) return fail_database();
    note.bind(1, std::string_view(run_.run_id));
    note.bind(2, std::string_view(run_.source));
    note.bind(3, std::string_view(&result_.seps.data, 1));
    note.bind(4, std::string_view(&result_.seps.fun, 1));
    note.bind(5, static_cast<std::int64_t>(result_.rows));
    note.bind(6, static_cast<std::int64_t>(result_.rejected));
    return note.run() || fail_database();
  }

  importer& owner_;
  database& db_;
  const run_plan& run_;
  import_result& result_;
  statement reject_;
  std::vector<std::string> spellings_;      // run ids whose old rows are gone
  std::optional<std::string> last_run_id_;  // of the last row that was accepted
};

bool importer::import_run(const run_plan& run, import_result& result) {
  return run_import(*this, run, result).all();
}

}  // namespace kiv::db
