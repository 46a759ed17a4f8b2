#include <algorithm>
#include <ostream>

#include "report/human.h"
#include "report/print_report.h"
#include "report/printable.h"
#include "report/run_diff.h"

namespace kiv::report {
namespace {

void write_run(json_writer& json, std::string_view key, const run_profile& run) {
  json.key(key);
  json.begin_object();
  json.key("run");
  json.text(run.name);
  json.key("complete");
  json.boolean(is_complete(run));
  json.end_object();
}

void write_members(json_writer& json, const compared_amounts& amounts) {
  json.key("a");
  json.number(amounts.a.bytes);
  json.key("b");
  json.number(amounts.b.bytes);
  json.key("change");
  json.number(amounts.change());
}

void write_verdict(json_writer& json, const run_diff& diff, const limit_verdict& verdict) {
  json.begin_object();
  json.key("of");
  json.text(name_of(verdict.limit.of));
  json.key("limit");
  json.text(verdict.limit.text);
  json.key("passed");
  diff.judged ? json.boolean(verdict.passed) : json.null();
  json.key("by");
  json.begin_array();
  if (diff.judged) {
    if (verdict.by_total) json.text("total");
    for (const auto& row : verdict.by) json.text(diff.names.name(diff.options.by, row.name));
  }
  json.end_array();
  json.end_object();
}

void print_json(std::ostream& out, const run_diff& diff) {
  json_writer json(out);
  json.begin_object();
  write_run(json, "a", *diff.a);
  write_run(json, "b", *diff.b);
  write_json_filter(json, diff.options.filter);
  json.key("by");
  json.text(name_of(diff.options.by));
  json.key("of");
  json.text(name_of(diff.options.of));
  json.key("total");
  json.begin_object();
  write_members(json, diff.total);
  json.end_object();
  json.key("rows");
  json.begin_array();
  for (const auto& row : diff.rows) {
    json.begin_object();
    write_json_name(json, diff.names, diff.options.by, row.name);
    write_members(json, row.amounts);
    json.end_object();
  }
  json.end_array();
  json.key("limits");
  json.begin_array();
  for (const auto& verdict : diff.verdicts) write_verdict(json, diff, verdict);
  json.end_array();
  json.end_object();
  json.end_document();
}

std::string_view verdict_word(const run_diff& diff, const limit_verdict& verdict) {
  return !diff.judged ? "not judged" : verdict.passed ? "passed" : "held";
}

void print_csv(std::ostream& out, const run_diff& diff) {
  csv_table table(out, {{"kind", ""},
                        {"run_a", ""},
                        {"run_b", ""},
                        {"by", ""},
                        {"of", ""},
                        {"name", ""},
                        {"a", ""},
                        {"b", ""},
                        {"change", ""},
                        {"verdict", ""}});
  const std::string by(name_of(diff.options.by)), of(name_of(diff.options.of));
  const auto add = [&](const char* kind, const std::string& of_what, const cell& name,
                       const compared_amounts& amounts, const cell& verdict) {
    table.add({std::string(kind), diff.a->name, diff.b->name, by, of_what, name, amounts.a.bytes,
               amounts.b.bytes, amounts.change(), verdict});
  };
  const auto complete = [](const run_profile& run) { return is_complete(run) ? 1u : 0u; };
  table.add({std::string("complete"),
             diff.a->name,
             diff.b->name,
             {},
             {},
             {},
             std::uint64_t{complete(*diff.a)},
             std::uint64_t{complete(*diff.b)},
             {},
             {}});
  if (diff.options.filter.is_on()) {
    table.add({std::string("filter"),
               diff.a->name,
               diff.b->name,
               {},
               {},
               diff.options.filter.in_words(),
               {},
               {},
               {},
               {}});
  }
  add("total", of, {}, diff.total, {});
  for (const auto& row : diff.rows) {
    add("row", of, diff.names.name(diff.options.by, row.name), row.amounts, {});
  }
  for (const auto& verdict : diff.verdicts) {
    const std::string word(verdict_word(diff, verdict));
    add("limit", std::string(name_of(verdict.limit.of)), verdict.limit.text,
        {verdict.total_a, verdict.total_b}, word);
    if (!diff.judged) continue;
    for (const auto& row : verdict.by) {
      add("passed", std::string(name_of(verdict.limit.of)),
          diff.names.name(diff.options.by, row.name), row.amounts, verdict.limit.text);
    }
  }
}

void print_rows(std::ostream& out, const run_diff& diff, const print_style& style,
                std::size_t top) {
  std::uint64_t changed = 0;
  aligned_table table(out,
                      {{"", "before", column_kind::bytes},
                       {"", "after", column_kind::bytes},
                       {"", "change", column_kind::change},
                       {"", "blocks", column_kind::count},
                       {"", "", column_kind::share},
                       {"", std::string(title_of(diff.options.by))}},
                      style, "  ");
  for (const auto& row : diff.rows) {
    if (row.amounts.change() == 0) continue;
    if (++changed > top) continue;
    table.add({row.amounts.a.bytes, row.amounts.b.bytes, row.amounts.change(), row.amounts.a.blocks,
               "-> " + grouped(row.amounts.b.blocks), diff.names.name(diff.options.by, row.name)});
  }
  if (changed > 0) table.finish();
  if (changed > top) out << "  ... and " << grouped(changed - top) << " more that changed\n";
  const std::uint64_t same = diff.rows.size() - changed;
  if (same > 0) {
    const char* others = changed == 0 ? "" : same == 1 ? " other" : " others";
    out << "  " << grouped(same) << others << " unchanged\n";
  }
  if (diff.left_out > 0) {
    out << "  ... and " << grouped(std::uint64_t{diff.left_out}) << " that --top left out\n";
  }
}

void print_verdict(std::ostream& out, const run_diff& diff, const limit_verdict& verdict,
                   const print_style& style) {
  const std::string word(verdict_word(diff, verdict));
  out << "  limit " << name_of(verdict.limit.of) << '=' << printable(verdict.limit.text) << ": "
      << (word == "held" ? word : alarming(word, style));
  if (word == "passed") {
    out << " by";
    if (verdict.by_total) {
      out << " the total (" << human_bytes(verdict.total_a.bytes) << " -> "
          << human_bytes(verdict.total_b.bytes) << ", "
          << human_change(static_cast<std::int64_t>(verdict.total_b.bytes - verdict.total_a.bytes))
          << ")";
    }
    if (!verdict.by.empty()) {
      out << (verdict.by_total ? " and " : " ") << grouped(std::uint64_t{verdict.by.size()})
          << (verdict.by.size() == 1 ? " name" : " names");
    }
  }
  out << '\n';
}

void print_text(std::ostream& out, const run_diff& diff, const print_style& style,
                std::size_t top) {
  const auto& options = diff.options;
  out << bold("Run " + quoted_name(diff.a->name) + " -> run " + quoted_name(diff.b->name), style)
      << ": " << title_of(options.of) << ", by " << title_of(options.by) << '\n';
  for (const auto* run : {diff.a, diff.b}) {
    if (is_complete(*run)) continue;
    out << alarming("Run " + quoted_name(run->name) + " is not known to be complete.", style)
        << " `kivdb report` names what is missing.\n";
  }
  if (options.filter.is_on()) {
    out << alarming("Filtered", style) << " by " << options.filter.in_words()
        << ": only what the filter leaves counts.\n";
  }
  print_rows(out, diff, style, top);
  out << "  together " << in_words(diff.total.a) << " -> " << in_words(diff.total.b) << ", "
      << human_change(diff.total.change()) << '\n';
  for (const auto& verdict : diff.verdicts) print_verdict(out, diff, verdict, style);
}

}  // namespace

void print_diff(std::ostream& out, const run_diff& diff, const print_style& style,
                std::size_t top) {
  switch (style.format) {
    case output_format::terminal:
      return print_text(out, diff, style, top);
    case output_format::csv:
      return print_csv(out, diff);
    case output_format::json:
      return print_json(out, diff);
  }
}

}  // namespace kiv::report
