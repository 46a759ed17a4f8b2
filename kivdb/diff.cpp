#include "diff.h"

#include <ostream>

#include "printable.h"
#include "view_keys.h"

namespace kiv::db {
namespace {

// View and column that hold the compared figure.
struct figure {
  std::string view, column;
};

figure figure_of(const diff_options& options) {
  if (options.of == "peak") return {"peak_by_" + options.by, "peak_bytes"};
  return {"by_" + options.by, options.of == "live" ? "live_bytes" : "alloc_bytes"};
}

std::string joined(const std::vector<std::string>& names) {
  std::string list;
  for (const auto& name : names) list += (list.empty() ? "" : ", ") + name;
  return list;
}

bool is_beyond(const growth_limit& limit, std::int64_t before, std::int64_t growth) {
  if (growth <= 0) return false;
  const auto grown = static_cast<double>(growth);
  if (!limit.percent) return grown > limit.value;
  return before <= 0 || grown * 100 > limit.value * static_cast<double>(before);
}

std::string limit_text(const growth_limit& limit) {
  std::string text = std::to_string(limit.value);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) text.pop_back();
  return text + (limit.percent ? "%" : " bytes");
}

}  // namespace

diff_result print_diff(std::ostream& out, database& db, const diff_options& options,
                       std::string& error) {
  for (const auto& run : {options.run_a, options.run_b}) {
    if (!has_run(db, run)) {
      error = "no run " + printable(run);
      return diff_result::failed;
    }
  }
  const view_key& key = *find_view_key(options.by);
  const figure what = figure_of(options);
  const std::string names = joined(key.stable_names);
  statement query = db.prepare("SELECT a + 0, b + 0, b - a AS growth, " + names + " FROM (SELECT " +
                               names + ", SUM(CASE WHEN run_id = ?1 THEN " + what.column +
                               " ELSE 0 END) AS a, SUM(CASE WHEN "
                               "run_id = ?2 THEN " +
                               what.column + " ELSE 0 END) AS b FROM " + what.view +
                               " WHERE run_id IN (?1, ?2) GROUP BY " + names +
                               ") ORDER BY growth DESC, " + names);
  if (!query) {
    error = db.last_error();
    return diff_result::failed;
  }
  query.bind(1, std::string_view(options.run_a));
  query.bind(2, std::string_view(options.run_b));

  result_table table;
  table.name = "diff";
  table.title = "Growth of " + options.of + " bytes from " + printable(options.run_a) + " to " +
                printable(options.run_b) + ", by " + key.title;
  table.columns = {{"bytes_a", printable(options.run_a), column_kind::bytes},
                   {"bytes_b", printable(options.run_b), column_kind::bytes},
                   {"growth", "growth", column_kind::bytes}};
  for (const auto& name : key.stable_names) table.columns.push_back({name, name});

  std::int64_t total_a = 0, total_b = 0, beyond = 0, rows = 0;
  std::string first_beyond;
  while (query.step()) {
    const std::int64_t a = query.number(0), growth = query.number(2);
    total_a += a;
    total_b += query.number(1);
    std::vector<result_cell> row = {a, query.number(1), growth};
    for (int i = 3; i < query.columns(); ++i) row.emplace_back(std::string(query.text(i)));
    if (options.fail_above && is_beyond(*options.fail_above, a, growth) && beyond++ == 0) {
      first_beyond = printable(query.text(3)) + " by " + std::to_string(growth) + " bytes";
    }
    if (rows++ < options.top) table.rows.push_back(std::move(row));
  }
  if (query.failed()) {
    error = db.last_error();
    return diff_result::failed;
  }
  switch (options.format) {
    case output_format::csv:
      print_csv(out, table);
      break;
    case output_format::json:
      print_json(out, table);
      out << '\n';
      break;
    case output_format::terminal:
      print_aligned(out, table, options.style);
      if (rows > options.top) out << "... and " << rows - options.top << " more\n";
      out << "Together " << human_bytes(total_a) << " -> " << human_bytes(total_b) << '\n';
      break;
  }
  const bool total_beyond =
      options.fail_above && is_beyond(*options.fail_above, total_a, total_b - total_a);
  if (beyond == 0 && !total_beyond) return diff_result::within_limit;
  error = "grew by more than " + limit_text(*options.fail_above) + ": ";
  error +=
      beyond > 0 ? first_beyond : "all together by " + std::to_string(total_b - total_a) + " bytes";
  if (beyond > 1) error += " and " + std::to_string(beyond - 1) + " more";
  return diff_result::beyond_limit;
}

}  // namespace kiv::db
