#include "report.h"

#include <ostream>

#include "human.h"
#include "printable.h"
#include "view_keys.h"

namespace kiv::db {
namespace {

// One line of the summary.
void item(std::ostream& out, const print_style& style, std::string_view label,
          const std::string& value) {
  if (value.empty()) return;
  std::string padded(label);
  padded.resize(14, ' ');
  out << "  " << (style.color ? "\x1b[2m" : "") << padded << (style.color ? "\x1b[0m" : "")
      << shortened(value, style.width > 20 ? style.width - 16 : 4) << '\n';
}

std::string amount(std::int64_t bytes, std::int64_t tot_bytes) {
  return human_bytes(bytes) + " (" + human_bytes(tot_bytes) + " with rounding)";
}

// What a trace lacks, in words; empty when nothing is known to be missing.
std::string losses(const statement& row, int first) {
  std::string text;
  const auto add = [&](std::int64_t number, std::string_view what) {
    if (number == 0) return;
    text += (text.empty() ? "" : ", ") + grouped(number) + ' ' + std::string(what);
  };
  add(row.number(first), "frees without a block");
  add(row.number(first + 1), "resizes without a block");
  add(row.number(first + 2), "blocks of unknown ids");
  add(row.number(first + 3), "blocks from unknown lines");
  if (row.number(first + 4) == 0) text += std::string(text.empty() ? "" : ", ") + "its end";
  return text;
}

bool print_summary(std::ostream& out, database& db, const report_options& options) {
  statement row = db.prepare(
      "SELECT s.main_pid, s.program, s.host, s.user_name, s.environment, s.description, "
      "s.start_time, s.end_time, s.records, s.allocs, s.alloc_bytes, s.frees, s.processes, s.ids, "
      "s.peak_bytes, s.peak_tot_bytes, s.peak_rec, s.peak_time, s.live_bytes, s.live_tot_bytes, "
      "s.heap_bytes, s.gap_bytes, l.frees_without_block, l.resizes_without_block, "
      "l.blocks_of_unknown_ids, l.blocks_of_unknown_lines, l.replayed_to_its_end FROM run_summary "
      "s JOIN lost l ON l.run_id = s.run_id AND l.main_pid = s.main_pid WHERE s.run_id = ? ORDER "
      "BY s.main_pid");
  if (!row) return false;
  row.bind(1, std::string_view(options.run));
  while (row.step()) {
    const auto text = [&](int column) { return printable(row.text(column)); };
    const auto& style = options.style;
    out << (style.color ? "\x1b[1m" : "") << "Run " << printable(options.run) << ", process "
        << row.number(0) << ": " << text(1) << (style.color ? "\x1b[0m" : "") << '\n';
    item(out, style, "who", text(3) + " on " + text(2) + " (" + text(4) + ")");
    item(out, style, "description", text(5));
    const auto lasted = milliseconds_between(row.text(6), row.text(7));
    item(out, style, "when",
         text(6) + " to " + text(7) + (lasted ? ", " + human_duration(*lasted) : ""));
    item(out, style, "records",
         grouped(row.number(8)) + " of memory: " + grouped(row.number(9)) + " allocations of " +
             human_bytes(row.number(10)) + ", " + grouped(row.number(11)) + " frees");
    item(out, style, "processes",
         grouped(row.number(12)) + ", with " + grouped(row.number(13)) + " allocation ids");
    if (!row.is_null(16)) {
      item(out, style, "peak",
           amount(row.number(14), row.number(15)) + " at record " + grouped(row.number(16)) + ", " +
               text(17));
    }
    item(out, style, "live at end", amount(row.number(18), row.number(19)));
    item(out, style, "heap",
         human_bytes(row.number(20)) + " grown, " + human_bytes(row.number(21)) + " of gaps");
    item(out, style, "lacks", losses(row, 22));
    out << '\n';
  }
  return !row.failed();
}

struct list_column {
  std::string_view name, title;
  column_kind kind;
};
constexpr list_column figures[] = {
    {"live_bytes", "live", column_kind::bytes},    {"live_blocks", "blocks", column_kind::count},
    {"peak_bytes", "at peak", column_kind::bytes}, {"alloc_bytes", "allocated", column_kind::bytes},
    {"allocs", "allocs", column_kind::count},      {"mean_bytes", "mean", column_kind::bytes},
};

std::string_view title_of(const std::string& name) {
  constexpr std::pair<std::string_view, std::string_view> titles[] = {
      {"id_name", "allocation id"}, {"color_name", "colour"},   {"source_line", "source line"},
      {"process_name", "process"},  {"query_text", "SQL text"}, {"main_pid", "trace"}};
  for (const auto& [column, title] : titles) {
    if (column == name) return title;
  }
  return name;
}

// The top rows of a key, by live memory at the end, then by what was live at the peak.
bool top_list(database& db, const view_key& key, const report_options& options, bool many_traces,
              result_table& table) {
  table.name = "by_" + key.name;
  table.title = "Top " + std::to_string(options.top) + " by " + key.title;
  std::string sql = "SELECT ";
  std::string same = "p.run_id = b.run_id AND p.main_pid = b.main_pid";
  for (const auto& column : key.columns) {
    same += " AND p.";
    same += column;
    same += " IS b.";
    same += column;
  }
  for (const auto& figure : figures) {
    const std::string name(figure.name);
    table.columns.push_back({name, std::string(figure.title), figure.kind});
    sql += name == "peak_bytes" ? "COALESCE(p.peak_bytes, 0) AS peak_bytes, " : "b." + name + ", ";
  }
  std::vector<std::string> names = key.stable_names;
  if (many_traces) names.insert(names.begin(), "main_pid");
  std::string_view comma;
  for (const auto& name : names) {
    table.columns.push_back({name, std::string(title_of(name)), column_kind::plain});
    sql += std::string(comma) + "b." + name;
    comma = ", ";
  }
  sql += " FROM by_" + key.name + " b LEFT JOIN peak_by_" + key.name + " p ON " + same +
         " WHERE b.run_id = ?1 ORDER BY b.live_bytes DESC, peak_bytes DESC, b.alloc_bytes DESC "
         "LIMIT ?2";
  statement query = db.prepare(sql);
  if (!query) return false;
  query.bind(1, std::string_view(options.run));
  query.bind(2, options.top);
  return fill(table, query);
}

bool summary_table(database& db, const std::string& run, result_table& table) {
  statement query = db.prepare(
      "SELECT s.*, l.blocks_of_unknown_ids, l.blocks_of_unknown_lines, l.replayed_to_its_end FROM "
      "run_summary s JOIN lost l ON l.run_id = s.run_id AND l.main_pid = s.main_pid WHERE "
      "s.run_id = ? ORDER BY s.main_pid");
  if (!query) return false;
  table.name = "summary";
  query.bind(1, std::string_view(run));
  name_columns(table, query);
  return fill(table, query);
}

void print_tables(std::ostream& out, const std::vector<result_table>& tables, output_format format,
                  const print_style& style) {
  std::string_view between;
  if (format == output_format::json) out << '{';
  for (const auto& table : tables) {
    out << between;
    if (format == output_format::json) {
      out << json_text(table.name) << ": ";
      print_json(out, table);
      between = ",\n";
    } else {
      format == output_format::csv ? print_csv(out, table) : print_aligned(out, table, style);
      between = "\n";
    }
  }
  if (format == output_format::json) out << "}\n";
}

void note_others(std::ostream& out, database& db, const report_options& options) {
  statement others = db.prepare("SELECT DISTINCT run_id FROM imports WHERE run_id <> ? ORDER BY 1");
  if (!others) return;
  others.bind(1, std::string_view(options.run));
  std::string list;
  while (others.step()) list += ' ' + printable(others.text(0));
  if (!list.empty()) {
    out << "\nOther runs (--run):" << shortened(list, options.style.width - 20) << '\n';
  }
}

void note_rejected(std::ostream& out, database& db, const std::string& run) {
  statement count = db.prepare("SELECT rejected_count FROM imports WHERE run_id = ?");
  if (!count) return;
  count.bind(1, std::string_view(run));
  if (count.step() && count.number(0) > 0) {
    out << "\nThe import could not read " << grouped(count.number(0))
        << " rows; see the table rejected_rows.\n";
  }
}

}  // namespace

std::string latest_run(database& db) {
  statement query = db.prepare("SELECT run_id FROM imports ORDER BY rowid DESC LIMIT 1");
  return query && query.step() ? std::string(query.text(0)) : std::string();
}

bool has_run(database& db, const std::string& run) {
  statement query = db.prepare(
      "SELECT 1 WHERE EXISTS (SELECT 1 FROM runs WHERE run_id = ?1) OR EXISTS (SELECT 1 FROM "
      "imports WHERE run_id = ?1)");
  if (!query) return false;
  query.bind(1, std::string_view(run));
  return query.step();
}

bool print_report(std::ostream& out, database& db, const report_options& options,
                  std::string& error) {
  report_options chosen = options;
  if (chosen.run.empty()) chosen.run = latest_run(db);
  if (!has_run(db, chosen.run)) {
    error = chosen.run.empty() ? "no run was imported yet" : "no run " + printable(chosen.run);
    return false;
  }
  statement traces = db.prepare("SELECT count(*) FROM runs WHERE run_id = ?");
  if (!traces) return false;
  traces.bind(1, std::string_view(chosen.run));
  const bool many = traces.step() && traces.number(0) > 1;

  std::vector<result_table> tables;
  const bool for_people = chosen.format == output_format::terminal;
  bool done = for_people ? print_summary(out, db, chosen)
                         : summary_table(db, chosen.run, tables.emplace_back());
  for (const auto& name : chosen.by) {
    done = done && top_list(db, *find_view_key(name), chosen, many, tables.emplace_back());
  }
  if (!done) {
    error = db.last_error();
    return false;
  }
  print_tables(out, tables, chosen.format, chosen.style);
  if (for_people) {
    note_rejected(out, db, chosen.run);
    note_others(out, db, chosen);
  }
  return true;
}

}  // namespace kiv::db
