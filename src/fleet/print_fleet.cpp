#include "fleet/print_fleet.h"

#include <algorithm>
#include <ostream>
#include <set>
#include <span>

#include "report/human.h"

namespace kiv::fleet {
namespace {

constexpr std::size_t rows_for_people = 10;

std::string_view name_of(const fleet_answer& answer) {
  return question_names[static_cast<std::size_t>(answer.of)];
}

std::span<const report::table_row> rows_of(const fleet_answer& answer,
                                           std::optional<std::size_t> top) {
  const std::size_t all = answer.rows.size();
  return std::span(answer.rows).first(std::min(all, top.value_or(all)));
}

// The columns that one kind of reader sees, and their cells.
struct seen_columns {
  seen_columns(const fleet_answer& answer, std::string report::column::*needed) {
    for (std::size_t i = 0; i < answer.columns.size(); ++i) {
      if ((answer.columns[i].*needed).empty()) continue;
      columns.push_back(answer.columns[i]);
      places.push_back(i);
    }
  }
  report::table_row cells(const report::table_row& row) const {
    report::table_row seen;
    for (const auto place : places) seen.push_back(row[place]);
    return seen;
  }

  std::vector<report::column> columns;
  std::vector<std::size_t> places;
};

void print_answer(std::ostream& out, const fleet_answer& answer, const report::print_style& style,
                  std::size_t top) {
  out << '\n' << bold(answer.title, style) << '\n';
  if (answer.rows.empty()) {
    out << "  none\n";
    return;
  }
  const seen_columns seen(answer, &report::column::title);
  report::aligned_table table(out, seen.columns, style, "  ");
  const auto shown = rows_of(answer, top);
  const auto release = std::ranges::find(seen.columns, "release", &report::column::name);
  for (const auto& row : shown) {
    report::table_row cells = seen.cells(row);
    if (release != seen.columns.end()) {
      report::cell& cell = cells[static_cast<std::size_t>(release - seen.columns.begin())];
      if (cell == report::cell(std::string())) cell = std::string("(none)");
    }
    table.add(cells);
  }
  table.finish();
  const std::uint64_t more = answer.rows.size() - shown.size();
  if (more > 0) out << "  ... and " << report::grouped(more) << " more\n";
}

void print_text(std::ostream& out, const fleet_runs& runs, const std::vector<fleet_answer>& answers,
                const report::print_style& style, std::size_t top) {
  std::set<std::string> programs, hosts;
  std::set<std::int64_t> incomplete;
  for (const auto& part : runs.parts()) {
    programs.insert(part.program);
    hosts.insert(part.host);
    if (!part.complete) incomplete.insert(part.order);
  }
  const auto counted = [](std::uint64_t count, const std::string& what) {
    return report::grouped(count) + ' ' + what + (count == 1 ? "" : "s");
  };
  out << bold(counted(runs.runs().size(), "run") + " of " + counted(programs.size(), "program") +
                  " on " + counted(hosts.size(), "host"),
              style)
      << '\n';
  if (!incomplete.empty()) {
    out << alarming(counted(incomplete.size(), "run") + " NOT COMPLETE", style)
        << ": their figures are of what is there.\n";
  }
  for (const auto& answer : answers) print_answer(out, answer, style, top);
}

void print_json(std::ostream& out, const std::vector<fleet_answer>& answers,
                const fleet_options& options, std::optional<std::size_t> top) {
  report::json_writer json(out);
  json.begin_object();
  json.key("label");
  json.text(options.label);
  json.key("by");
  json.text(report::name_of(options.by));
  json.key("of");
  json.text(report::name_of(options.of));
  for (const auto& answer : answers) {
    const seen_columns seen(answer, &report::column::name);
    json.key(name_of(answer));
    json.begin_array();
    for (const auto& row : rows_of(answer, top)) {
      write_json_row(json, seen.columns, seen.cells(row));
    }
    json.end_array();
  }
  json.end_object();
  json.end_document();
}

// One table for all: `kind` names the question, cells of other questions are empty.
void print_csv(std::ostream& out, const std::vector<fleet_answer>& answers,
               std::optional<std::size_t> top) {
  std::vector<report::column> columns = {{"kind", ""}};
  for (const auto& answer : answers) {
    for (const auto& column : seen_columns(answer, &report::column::name).columns) {
      if (std::ranges::find(columns, column.name, &report::column::name) == columns.end()) {
        columns.push_back(column);
      }
    }
  }
  report::csv_table table(out, columns);
  for (const auto& answer : answers) {
    for (const auto& row : rows_of(answer, top)) {
      report::table_row cells(columns.size());
      cells[0] = std::string(name_of(answer));
      for (std::size_t i = 0; i < row.size(); ++i) {
        const auto at = std::ranges::find(columns, answer.columns[i].name, &report::column::name);
        if (at != columns.end()) cells[static_cast<std::size_t>(at - columns.begin())] = row[i];
      }
      table.add(cells);
    }
  }
}

}  // namespace

void print_fleet(std::ostream& out, const fleet_runs& runs,
                 const std::vector<fleet_answer>& answers, const fleet_options& options,
                 const report::print_style& style, std::optional<std::size_t> top) {
  switch (style.format) {
    case report::output_format::terminal:
      return print_text(out, runs, answers, style, top.value_or(rows_for_people));
    case report::output_format::csv:
      return print_csv(out, answers, top);
    case report::output_format::json:
      return print_json(out, answers, options, top);
  }
}

}  // namespace kiv::fleet
