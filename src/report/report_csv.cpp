#include "report/print_report.h"

namespace kiv::report {
namespace {

// One table for all: `kind` says what a row is about, cells that do not apply are empty.
const std::vector<column> report_columns = {
    {"kind", ""}, {"run", ""},   {"pid", ""},    {"by", ""},    {"of", ""},
    {"name", ""}, {"count", ""}, {"blocks", ""}, {"bytes", ""}, {"tot_bytes", ""}};

class report_rows {
 public:
  explicit report_rows(std::ostream& out) : table_(out, report_columns) {}

  void fact(std::string_view kind, const std::string& run, const profile& trace,
            const std::string& name, std::uint64_t count) {
    table_.add({std::string(kind), run, trace.pid, {}, {}, name, count, {}, {}, {}});
  }
  void sum(std::string_view kind, const std::string& run, const cell& pid, const cell& by,
           std::string_view of, const cell& name, const amount& what) {
    table_.add({std::string(kind),
                run,
                pid,
                by,
                std::string(of),
                name,
                {},
                what.blocks,
                what.bytes,
                what.tot_bytes});
  }

 private:
  csv_table table_;
};

void add_figures(report_rows& rows, const std::string& run, const trace_figures& figures) {
  const profile& trace = *figures.trace;
  rows.fact("trace", run, trace, trace.program, 1);
  rows.fact("complete", run, trace, trace.complete() ? "yes" : "no", trace.complete() ? 1 : 0);
  for (const auto& lost : trace.losses) rows.fact("loss", run, trace, lost.what, lost.count);
  if (trace.from_rows) rows.fact("note", run, trace, "computed from CSV tables", 1);
  for (const auto& note : trace.notes) rows.fact("note", run, trace, note, 1);
  rows.fact("records", run, trace, "", trace.records);
  rows.fact("peak_record", run, trace, trace.peak.time, trace.peak.record);
  rows.fact("heap_bytes", run, trace, "", trace.heap_bytes);
  rows.fact("processes", run, trace, "", figures.processes);
  rows.fact("ids", run, trace, "", figures.ids);
  const std::pair<std::string_view, const split_amount*> sums[] = {
      {"allocated", &figures.allocated}, {"freed", &figures.freed},
      {"leaked", &figures.leaked},       {"reset", &figures.reset},
      {"released", &figures.released},   {"live", &figures.live},
      {"peak", &figures.at_peak},        {"temporary", &figures.temporary}};
  for (const auto& [of, sum] : sums) {
    rows.sum("figure", run, trace.pid, {}, of, std::string("with-free"), sum->with_free);
    rows.sum("figure", run, trace.pid, {}, of, std::string("no-free"), sum->no_free);
  }
}

}  // namespace

void print_reports_as_csv(std::ostream& out, const std::vector<run_report>& reports) {
  report_rows rows(out);
  for (const auto& report : reports) {
    const std::string& run = report.run->name;
    if (report.filter.is_on()) {
      rows.fact("filter", run, profile{}, report.filter.in_words(), 1);
    }
    for (const auto& figures : report.traces) add_figures(rows, run, figures);
    for (const auto& list : report.lists) {
      const std::string by(name_of(list.by));
      const std::string_view of = name_of(list.of);
      rows.sum("total", run, {}, by, of, {}, list.total.sum());
      for (const auto& row : list.rows) {
        rows.sum("row", run, {}, by, of, report.names.name(list.by, row.name), row.sum.sum());
      }
    }
  }
}

}  // namespace kiv::report
