#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "report/run_report.h"
#include "report/table.h"

namespace kiv::report {

// Prints the reports of one answer in the format of the style. For people a list shows at most
// `top` rows, and a run at most so many traces: unless told 10, of call paths 4. For scripts all
// that the reports hold.
void print_reports(std::ostream& out, const std::vector<run_report>& reports,
                   const print_style& style, std::optional<std::size_t> top);

// The same, one format each.
void print_reports_as_text(std::ostream& out, const std::vector<run_report>& reports,
                           const print_style& style, std::optional<std::size_t> top);
void print_reports_as_csv(std::ostream& out, const std::vector<run_report>& reports);
void print_reports_as_json(std::ostream& out, const std::vector<run_report>& reports);

// One trace for people: what it was, whether it is complete, its memory over time, its figures.
void print_trace(std::ostream& out, const trace_figures& figures, bool is_filtered,
                 const print_style& style);

// "12.7 KiB in 16 blocks"
std::string in_words(const amount& what);

// The members "blocks", "bytes" and "tot_bytes" of an object that is open.
void write_json_members(json_writer& json, const amount& what);
// An object of them.
void write_json(json_writer& json, const amount& what);
// "frames" with the functions of a call path, or "name" with any other name.
void write_json_name(json_writer& json, const name_book& names, group_key by, std::uint32_t name);
// How a run is written in JSON.
struct json_run_style {
  // The member "name" or "frames" of a list's row.
  std::function<void(json_writer&, group_key, std::uint32_t)> name;
  // What stands for a text of the trace; empty: the text itself.
  std::function<std::string(const std::string&)> text = {};
  // Whether a list of which rows were left out has their sum as "others".
  bool with_others = false;
};

// An object: the run's name, its traces with their figures, its lists.
void write_json_run(json_writer& json, const run_profile& run, const filter_options& filter,
                    const std::vector<trace_figures>& traces, const std::vector<group_list>& lists,
                    const json_run_style& style);
// A "filter" object with what is set; nothing when the filter is off.
void write_json_filter(json_writer& json, const filter_options& filter);

}  // namespace kiv::report
