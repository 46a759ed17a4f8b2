#include <fmt/format.h>

#include <ostream>

#include "report/call_tree.h"
#include "report/human.h"
#include "report/print_report.h"
#include "report/printable.h"

namespace kiv::report {
namespace {

// People are spared the middle of a long chain of calls that hand all on to one another.
constexpr std::size_t longest_chain = 12;
constexpr std::size_t chain_ends = 4;
constexpr std::uint32_t deepest_indent = 30;

std::string function_of(const call_tree& tree, const tree_row& row) {
  if (row.path == 0) return "(no call path)";
  return tree.names.name(group_key::function, tree.names.path_node(row.path).second);
}

void print_json(std::ostream& out, const call_tree& tree) {
  json_writer json(out);
  json.begin_object();
  json.key("run");
  json.text(tree.run->name);
  json.key("complete");
  json.boolean(is_complete(*tree.run));
  write_json_filter(json, tree.options.filter);
  json.key("of");
  json.text(name_of(tree.options.of));
  json.key("total");
  write_json(json, tree.total);
  json.key("rows");
  json.begin_array();
  for (const auto& row : tree.rows) {
    json.begin_object();
    json.key("depth");
    json.number(std::uint64_t{row.depth});
    json.key("function");
    json.text(function_of(tree, row));
    json.key("inclusive");
    write_json(json, row.inclusive);
    json.key("self");
    write_json(json, row.self);
    json.end_object();
  }
  json.end_array();
  json.key("left_out");
  json.begin_object();
  json.key("calls");
  json.number(tree.left_out);
  write_json_members(json, tree.left_out_sum);
  json.end_object();
  json.end_object();
  json.end_document();
}

void print_csv(std::ostream& out, const call_tree& tree) {
  csv_table table(out, {{"kind", ""},
                        {"run", ""},
                        {"complete", ""},
                        {"of", ""},
                        {"depth", ""},
                        {"function", ""},
                        {"calls", ""},
                        {"blocks", ""},
                        {"bytes", ""},
                        {"tot_bytes", ""},
                        {"self_blocks", ""},
                        {"self_bytes", ""},
                        {"self_tot_bytes", ""}});
  const std::string of(name_of(tree.options.of));
  const std::string complete = is_complete(*tree.run) ? "yes" : "no";
  const auto add = [&](const char* kind, const cell& depth, const cell& function, const cell& calls,
                       const amount& all, const amount& self) {
    table.add({std::string(kind), tree.run->name, complete, of, depth, function, calls, all.blocks,
               all.bytes, all.tot_bytes, self.blocks, self.bytes, self.tot_bytes});
  };
  add("total", {}, {}, {}, tree.total, {});
  for (const auto& row : tree.rows) {
    add("row", std::uint64_t{row.depth}, function_of(tree, row), {}, row.inclusive, row.self);
  }
  add("left_out", {}, {}, tree.left_out, tree.left_out_sum, tree.left_out_sum);
}

// Whether a row hands everything on to the row below it.
bool hands_on(const call_tree& tree, std::size_t i) {
  return i + 1 < tree.rows.size() && tree.rows[i].self == amount{} &&
         tree.rows[i + 1].depth == tree.rows[i].depth + 1 &&
         tree.rows[i + 1].inclusive == tree.rows[i].inclusive;
}

void add_row(aligned_table& table, const call_tree& tree, std::size_t i) {
  const tree_row& row = tree.rows[i];
  std::string name(std::size_t{2} * std::min(row.depth, deepest_indent), ' ');
  if (row.depth > deepest_indent) name += fmt::format("[{}] ", row.depth);
  name += function_of(tree, row);
  table.add({row.inclusive.bytes, human_share(row.inclusive.bytes, tree.total.bytes),
             row.self.bytes, row.self.blocks, name});
}

void add_rows(aligned_table& table, const call_tree& tree) {
  for (std::size_t first = 0, last = 0; first < tree.rows.size(); first = last + 1) {
    for (last = first; hands_on(tree, last);) ++last;
    const std::size_t length = last - first + 1;
    for (std::size_t i = first; i <= last; ++i) {
      add_row(table, tree, i);
      if (length > longest_chain && i + 1 == first + chain_ends) {
        const std::size_t hidden = length - 2 * chain_ends;
        const std::uint32_t depth = std::min(tree.rows[i].depth + 1, deepest_indent);
        table.add_below(std::string(std::size_t{2} * depth, ' ') + "... " +
                        grouped(std::uint64_t{hidden}) + " calls deeper ...");
        i += hidden;
      }
    }
  }
}

void print_text(std::ostream& out, const call_tree& tree, const print_style& style) {
  const auto& filter = tree.options.filter;
  out << bold("Run " + quoted_name(tree.run->name), style) << ": " << title_of(tree.options.of)
      << ", by call path: " << in_words(tree.total) << '\n';
  if (filter.is_on()) {
    out << alarming("Filtered", style) << " by " << filter.in_words()
        << ": only what the filter leaves counts.\n";
  }
  if (!tree.rows.empty()) {
    aligned_table table(out,
                        {{"", "with callees", column_kind::bytes},
                         {"", "share", column_kind::share},
                         {"", "itself", column_kind::bytes},
                         {"", "blocks", column_kind::count},
                         {"", "function"}},
                        style, "  ");
    add_rows(table, tree);
    table.finish();
  }
  if (tree.left_out > 0) {
    out << fmt::format("  ... and {} calls that hold less than {:g} % each: {}\n",
                       grouped(tree.left_out), tree.options.min_share, in_words(tree.left_out_sum));
  }
  if (!is_complete(*tree.run)) {
    out << alarming("This run is not known to be complete.", style)
        << " `kivdb report` names what is missing.\n";
  }
}

}  // namespace

void print_tree(std::ostream& out, const call_tree& tree, const print_style& style) {
  switch (style.format) {
    case output_format::terminal:
      return print_text(out, tree, style);
    case output_format::csv:
      return print_csv(out, tree);
    case output_format::json:
      return print_json(out, tree);
  }
}

}  // namespace kiv::report
