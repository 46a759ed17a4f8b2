#include "store/run_list.h"

#include <map>
#include <utility>

namespace kiv::store {
namespace {

run_info read_run(const statement& row) {
  int next = 0;
  const auto text = [&] { return std::string(row.text(next++)); };
  const auto number = [&] { return static_cast<std::uint64_t>(row.number(next++)); };
  const auto read_amount = [&](amount& a) {
    a.blocks = number();
    a.bytes = number();
    a.tot_bytes = number();
  };
  run_info run;
  run.name = text();
  run.imported_at = text();
  run.source = text();
  run.traces = number();
  run.complete = number() != 0;
  run.from_rows = number() != 0;
  run.records = number();
  for (amount* a : {&run.allocated, &run.leaked, &run.live, &run.peak}) read_amount(*a);
  if (row.type(next) != SQLITE_NULL) run.rows = number();
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
