#include "report/print_report.h"

namespace kiv::report {
namespace {

void write_figures(json_writer& json, const trace_figures& figures, const json_run_style& style) {
  const profile& trace = *figures.trace;
  json.begin_object();
  const auto text = [&](std::string_view key, const std::string& value) {
    json.key(key);
    json.text(style.text ? style.text(value) : value);
  };
  const auto number = [&](std::string_view key, auto value) {
    json.key(key);
    json.number(value);
  };
  number("pid", trace.pid);
  text("program", trace.program);
  text("start", trace.start);
  text("end", trace.end);
  json.key("complete");
  json.boolean(trace.complete());
  json.key("losses");
  json.begin_array();
  for (const auto& lost : trace.losses) {
    json.begin_object();
    text("what", lost.what);
    number("count", lost.count);
    if (!lost.first.empty()) text("first", lost.first);
    json.end_object();
  }
  json.end_array();
  number("records", trace.records);
  const std::pair<std::string_view, const split_amount*> sums[] = {
      {"allocated", &figures.allocated}, {"freed", &figures.freed},
      {"leaked", &figures.leaked},       {"reset", &figures.reset},
      {"released", &figures.released},   {"live", &figures.live},
      {"temporary", &figures.temporary}};
  for (const auto& [name, sum] : sums) {
    json.key(name);
    write_json(json, sum->sum());
  }
  json.key("peak");
  json.begin_object();
  const amount peak = figures.at_peak.sum();
  number("bytes", peak.bytes);
  number("tot_bytes", peak.tot_bytes);
  number("blocks", peak.blocks);
  number("record", trace.peak.record);
  text("time", trace.peak.time);
  json.end_object();

  json.key("no_free");
  json.begin_object();
  for (const auto& [name, sum] : sums) {
    json.key(name);
    write_json(json, sum->no_free);
  }
  json.key("peak");
  write_json(json, figures.at_peak.no_free);
  json.end_object();
  number("heap_bytes", trace.heap_bytes);
  number("gap_bytes", trace.gap_bytes);
  number("processes", std::uint64_t{figures.processes});
  number("ids", std::uint64_t{figures.ids});
  text("environment", trace.environment);
  text("account", trace.account);
  text("host", trace.host);
  text("user", trace.user);
  text("description", trace.description);
  json.key("from_rows");
  json.boolean(trace.from_rows);
  json.key("notes");
  json.begin_array();
  for (const auto& note : trace.notes) json.text(style.text ? style.text(note) : note);
  json.end_array();
  json.end_object();
}

void write_list(json_writer& json, const group_list& list, const json_run_style& style) {
  json.begin_object();
  json.key("by");
  json.text(name_of(list.by));
  json.key("of");
  json.text(name_of(list.of));
  json.key("total");
  write_json(json, list.total.sum());
  json.key("rows");
  json.begin_array();
  for (const auto& row : list.rows) {
    json.begin_object();
    style.name(json, list.by, row.name);
    write_json_members(json, row.sum.sum());
    json.end_object();
  }
  json.end_array();
  if (style.with_others && list.left_out > 0) {
    json.key("others");
    json.begin_object();
    json.key("names");
    json.number(std::uint64_t{list.left_out});
    write_json_members(json, list.left_out_sum.sum());
    json.end_object();
  }
  json.end_object();
}

}  // namespace

void write_json_members(json_writer& json, const amount& what) {
  json.key("blocks");
  json.number(what.blocks);
  json.key("bytes");
  json.number(what.bytes);
  json.key("tot_bytes");
  json.number(what.tot_bytes);
}

void write_json(json_writer& json, const amount& what) {
  json.begin_object();
  write_json_members(json, what);
  json.end_object();
}

void write_json_name(json_writer& json, const name_book& names, group_key by, std::uint32_t name) {
  if (by != group_key::path) {
    json.key("name");
    json.text(names.name(by, name));
    return;
  }
  json.key("frames");
  json.begin_array();
  for (const auto frame : names.frames(name)) json.text(names.name(group_key::function, frame));
  json.end_array();
}

void write_json_filter(json_writer& json, const filter_options& filter) {
  if (!filter.is_on()) return;
  json.key("filter");
  json.begin_object();
  const auto member = [&](std::string_view key, const std::optional<std::string>& value) {
    if (!value) return;
    json.key(key);
    json.text(*value);
  };
  member("focus", filter.focus);
  member("ignore", filter.ignore);
  member("process", filter.process);
  json.end_object();
}

void write_json_run(json_writer& json, const run_profile& run, const filter_options& filter,
                    const std::vector<trace_figures>& traces, const std::vector<group_list>& lists,
                    const json_run_style& style) {
  json.begin_object();
  json.key("run");
  json.text(style.text ? style.text(run.name) : run.name);
  write_json_filter(json, filter);
  json.key("traces");
  json.begin_array();
  for (const auto& figures : traces) write_figures(json, figures, style);
  json.end_array();
  json.key("lists");
  json.begin_array();
  for (const auto& list : lists) write_list(json, list, style);
  json.end_array();
  json.end_object();
}

void print_reports_as_json(std::ostream& out, const std::vector<run_report>& reports) {
  json_writer json(out);
  json.begin_object();
  json.key("runs");
  json.begin_array();
  for (const auto& report : reports) {
    const json_run_style style = {.name = [&](json_writer& into, group_key by, std::uint32_t name) {
      write_json_name(into, report.names, by, name);
    }};
    write_json_run(json, *report.run, report.filter, report.traces, report.lists, style);
  }
  json.end_array();
  json.end_object();
  json.end_document();
}

}  // namespace kiv::report
