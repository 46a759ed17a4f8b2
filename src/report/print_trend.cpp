#include <algorithm>
#include <ostream>

#include "report/human.h"
#include "report/print_report.h"
#include "report/printable.h"
#include "report/run_trend.h"
#include "report/timeline_picture.h"

namespace kiv::report {
namespace {

constexpr std::size_t widest_picture = 30;

void print_json(std::ostream& out, const run_trend& trend) {
  json_writer json(out);
  json.begin_object();
  write_json_filter(json, trend.options().filter);
  json.key("by");
  json.text(name_of(trend.options().by));
  json.key("of");
  json.text(name_of(trend.options().of));
  json.key("runs");
  json.begin_array();
  for (const auto& point : trend.points()) {
    json.begin_object();
    json.key("run");
    json.text(point.run);
    json.key("complete");
    json.boolean(point.complete);
    for (std::size_t of = 0; of < measure_count; ++of) {
      json.key(measure_names[of]);
      write_json(json, point.totals[of]);
    }
    json.end_object();
  }
  json.end_array();
  json.key("rows");
  json.begin_array();
  for (const auto& row : trend.rows()) {
    json.begin_object();
    write_json_name(json, trend.names(), trend.options().by, row.name);
    json.key("bytes");
    json.begin_array();
    for (const auto bytes : row.bytes) json.number(bytes);
    json.end_array();
    json.key("change");
    json.number(row.change);
    json.key("grew");
    json.number(row.grew);
    json.end_object();
  }
  json.end_array();
  json.end_object();
  json.end_document();
}

void print_csv(std::ostream& out, const run_trend& trend) {
  csv_table table(out, {{"kind", ""},
                        {"run", ""},
                        {"complete", ""},
                        {"by", ""},
                        {"of", ""},
                        {"name", ""},
                        {"blocks", ""},
                        {"bytes", ""},
                        {"tot_bytes", ""}});
  const auto& points = trend.points();
  const auto complete = [](const trend_point& point) {
    return std::string(point.complete ? "yes" : "no");
  };
  for (const auto& point : points) {
    for (std::size_t of = 0; of < measure_count; ++of) {
      const amount& total = point.totals[of];
      table.add({std::string("total"),
                 point.run,
                 complete(point),
                 {},
                 std::string(measure_names[of]),
                 {},
                 total.blocks,
                 total.bytes,
                 total.tot_bytes});
    }
  }
  const std::string by(name_of(trend.options().by)), of(name_of(trend.options().of));
  for (const auto& row : trend.rows()) {
    const std::string name = trend.names().name(trend.options().by, row.name);
    for (std::size_t i = 0; i < points.size(); ++i) {
      table.add({std::string("row"),
                 points[i].run,
                 complete(points[i]),
                 by,
                 of,
                 name,
                 {},
                 row.bytes[i],
                 {}});
    }
  }
}

// The last of the runs, as far as they fit.
std::string picture(const std::vector<std::uint64_t>& bytes) {
  const std::size_t shown = std::min(bytes.size(), widest_picture);
  const std::vector<std::uint64_t> last(bytes.end() - static_cast<std::ptrdiff_t>(shown),
                                        bytes.end());
  return bars(last, *std::ranges::max_element(last));
}

void print_runs(std::ostream& out, const run_trend& trend, const print_style& style) {
  std::vector<column> columns;
  for (std::size_t of = 0; of < measure_count; ++of) {
    columns.push_back({"", std::string(title_of(static_cast<measure>(of))), column_kind::bytes});
  }
  columns.push_back({"", "complete"});
  columns.push_back({"", "run"});
  aligned_table table(out, columns, style, "  ");
  for (const auto& point : trend.points()) {
    table_row cells;
    for (const auto& total : point.totals) cells.emplace_back(total.bytes);
    cells.emplace_back(std::string(point.complete ? "yes" : "NO"));
    cells.emplace_back(point.run);
    table.add(cells);
  }
  table.finish();
}

void print_rows(std::ostream& out, const run_trend& trend, const print_style& style,
                std::size_t top) {
  aligned_table table(out,
                      {{"", "first", column_kind::bytes},
                       {"", "last", column_kind::bytes},
                       {"", "change", column_kind::change},
                       {"", "grew", column_kind::share},
                       {"", ""},
                       {"", std::string(title_of(trend.options().by))}},
                      style, "  ");
  const auto& rows = trend.rows();
  const std::string steps = std::to_string(trend.points().size() - 1);
  for (std::size_t i = 0; i < std::min(top, rows.size()); ++i) {
    table.add({rows[i].bytes.front(), rows[i].bytes.back(), rows[i].change,
               std::to_string(rows[i].grew) + " of " + steps, picture(rows[i].bytes),
               trend.names().name(trend.options().by, rows[i].name)});
  }
  if (!rows.empty()) table.finish();
  const std::uint64_t more = rows.size() - std::min(top, rows.size()) + trend.left_out();
  if (more > 0) out << "  ... and " << grouped(more) << " more\n";
}

void print_text(std::ostream& out, const run_trend& trend, const print_style& style,
                std::size_t top) {
  const auto& options = trend.options();
  out << bold(grouped(std::uint64_t{trend.points().size()}) + " runs, in the order of their import",
              style)
      << '\n';
  if (options.filter.is_on()) {
    out << alarming("Filtered", style) << " by " << options.filter.in_words()
        << ": only what the filter leaves counts.\n";
  }
  print_runs(out, trend, style);
  if (trend.points().empty()) return;
  std::string title(title_of(options.of));
  title[0] = static_cast<char>(title[0] - 'a' + 'A');
  out << '\n'
      << bold(title + " by " + std::string(title_of(options.by)) + ", what grew most", style)
      << '\n';
  print_rows(out, trend, style, top);
}

}  // namespace

void print_trend(std::ostream& out, const run_trend& trend, const print_style& style,
                 std::size_t top) {
  switch (style.format) {
    case output_format::terminal:
      return print_text(out, trend, style, top);
    case output_format::csv:
      return print_csv(out, trend);
    case output_format::json:
      return print_json(out, trend);
  }
}

}  // namespace kiv::report
