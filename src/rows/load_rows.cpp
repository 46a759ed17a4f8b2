#include "rows/load_rows.h"

#include <algorithm>

#include "rows/trace_totals.h"
#include "util/printable.h"

namespace kiv::rows {
namespace {

// The columns of a table that are stored, but for the run's id: labels need no storage.
std::vector<store::row_column> stored_columns(const csv_table& table) {
  std::vector<store::row_column> columns;
  for (std::size_t i = 1; i < table.columns.size(); ++i) {
    const csv_column& column = table.columns[i];
    if (!column.label.empty()) continue;
    const bool is_number = column.type == column_type::i64 || column.type == column_type::u64;
    columns.push_back({column.name, i, !is_number});
  }
  return columns;
}

bool load_table(store::row_target& target, run_reading& reading, const csv_table& table,
                trace_totals& totals, std::uint64_t& count) {
  const bool counted = table.name == "memory" || table.name == "freemem";
  table_rows rows(reading, table.name,
                  counted ? table_rows::rejects::fatal : table_rows::rejects::named);
  if (!target.begin(table.name, stored_columns(table))) return reading.fail(target.error());
  while (const parsed_row* row = rows.next()) {
    if (!totals.add(reading, table.name, rows)) return false;
    if (!target.write(row->columns)) return reading.fail(target.error());
  }
  count += rows.rows();
  return reading.error().empty();
}

}  // namespace

std::optional<std::uint64_t> load_rows(store::row_target& target, const run_plan& plan,
                                       const row_options& options, const run_profile& run,
                                       std::vector<std::string>& rejected, std::string& error) {
  run_reading reading(plan, options);
  trace_totals totals;
  std::uint64_t count = 0;
  bool done = reading.begin();
  for (const auto& table : csv_tables()) {
    done = done && load_table(target, reading, table, totals, count);
  }
  done = done && (target.finish() || reading.fail(target.error()));
  const bool same_run = run.traces.empty() || std::ranges::any_of(run.traces, [&](const auto& p) {
                          return p.run == reading.run_id();
                        });
  if (done && !same_run) {
    done = reading.fail(plan.source + ": the tables are those of the run " +
                        quoted_name(reading.run_id()));
  }
  if (done) {
    const std::string reason = totals.compare(run);
    done = reason.empty() || reading.fail(plan.source + ": " + reason);
  }
  rejected = reading.rejected();
  error = reading.error();
  return done ? std::optional(count) : std::nullopt;
}

}  // namespace kiv::rows
