#include "store/run_list.h"

#include <map>
#include <utility>

#include "store/run_columns.h"

namespace kiv::store {
namespace {

run_info read_run(const statement& row) {
  run_info run = read_run_columns([&](int column) { return row.text(column); },
                                  [&](int column) { return row.number(column); });
  if (row.type(row_count_column) != SQLITE_NULL) {
    run.rows = static_cast<std::uint64_t>(row.number(row_count_column));
  }
  return run;
}

}  // namespace

std::optional<std::vector<run_info>> read_run_list(database& db, std::string& error) {
  const transaction snapshot(db, transaction::kind::read);
  std::map<std::string, run_labels, std::less<>> labels;
  statement label = db.prepare("SELECT run, key, value FROM labels ORDER BY run, key");
  while (label && label.step()) {
    labels[std::string(label.text(0))].emplace_back(label.text(1), label.text(2));
  }
  std::vector<run_info> all;
  statement list = db.prepare("SELECT * FROM run_list");
  while (list && list.step()) {
    all.push_back(read_run(list));
    if (const auto of = labels.find(all.back().name); of != labels.end()) {
      all.back().labels = std::move(of->second);
    }
  }
  if (label && list && !label.failed() && !list.failed()) return all;
  error = db.error();
  return std::nullopt;
}

bool write_labels(database& db, std::int64_t run, const run_labels& labels) {
  statement insert = db.prepare("INSERT INTO run_label VALUES (?, ?, ?)");
  if (!insert) return false;
  insert.bind(1, run);
  for (const auto& [key, value] : labels) {
    insert.bind(2, std::string_view(key));
    insert.bind(3, std::string_view(value));
    if (!insert.run()) return false;
  }
  return true;
}

}  // namespace kiv::store
