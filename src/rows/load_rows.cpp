#include "rows/load_rows.h"

#include <algorithm>

#include "rows/row_tables.h"
#include "rows/table_writer.h"
#include "rows/trace_totals.h"
#include "util/printable.h"

namespace kiv::rows {
namespace {

bool load_table(store::database& db, run_reading& reading, const csv_table& table,
                const run_profile& run, trace_totals& totals, std::uint64_t& count) {
  const bool counted = table.name == "memory" || table.name == "freemem";
  table_rows rows(reading, table.name,
                  counted ? table_rows::rejects::fatal : table_rows::rejects::named);
  table_writer writer(db, table, run.name);
  if (!writer.is_ready()) return reading.fail(db.error());
  while (const parsed_row* row = rows.next()) {
    if (!totals.add(reading, table.name, rows)) return false;
    if (!writer.write(row->columns)) return reading.fail(db.error());
  }
  count += rows.rows();
  return reading.error().empty();
}

}  // namespace

std::optional<std::uint64_t> load_rows(store::database& db, const run_plan& plan,
                                       const row_options& options, const run_profile& run,
                                       std::vector<std::string>& rejected, std::string& error) {
  run_reading reading(plan, options);
  trace_totals totals;
  std::uint64_t count = 0;
  bool done = make_row_tables(db) || reading.fail(db.error());
  done = done && reading.begin();
  for (const auto& table : csv_tables()) {
    done = done && load_table(db, reading, table, run, totals, count);
  }
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
