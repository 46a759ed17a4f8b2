#include <algorithm>
#include <ostream>

#include "report/human.h"
#include "report/print_report.h"
#include "report/printable.h"

namespace kiv::report {
namespace {

// Of a longer call path the innermost functions and the outermost one are shown.
constexpr std::size_t most_frames = 8;
constexpr std::size_t most_rows = 10, most_paths = 4;  // unless told

std::size_t rows_shown(group_key by, std::optional<std::size_t> top) {
  return top.value_or(by == group_key::path ? most_paths : most_rows);
}

std::string capital(std::string_view text) {
  std::string changed(text);
  if (!changed.empty() && changed[0] >= 'a' && changed[0] <= 'z') {
    changed[0] = static_cast<char>(changed[0] - 'a' + 'A');
  }
  return changed;
}

// The name of a process with its process ids, as far as that helps.
std::string process_name(const run_report& report, std::uint32_t name) {
  const auto& ids = report.process_ids[name];
  std::string text = report.names.name(group_key::process, name);
  if (ids.size() == 1 && ids[0] != 0) text += " (" + std::to_string(ids[0]) + ")";
  if (ids.size() > 1) {
    text +=
        " (" + std::to_string(ids[0]) + " and " + grouped(std::uint64_t{ids.size() - 1}) + " more)";
  }
  return text;
}

// The functions of a call path from the innermost on, one for each line.
std::vector<std::string> frame_lines(const name_book& names, std::uint32_t path) {
  auto frames = names.frames(path);
  if (frames.empty()) return {"(no call path)"};
  std::ranges::reverse(frames);
  const auto name = [&](std::uint32_t frame) { return names.name(group_key::function, frame); };
  std::vector<std::string> lines;
  const bool cut = frames.size() > most_frames;
  const std::size_t first = cut ? most_frames - 2 : frames.size();
  for (std::size_t i = 0; i < first; ++i) lines.push_back(name(frames[i]));
  if (cut) {
    lines.push_back("... " + grouped(std::uint64_t{frames.size() - first - 1}) + " more ...");
    lines.push_back(name(frames.back()));
  }
  return lines;
}

void print_list(std::ostream& out, const run_report& report, const group_list& list,
                const print_style& style, std::optional<std::size_t> top) {
  const amount total = list.total.sum();
  out << '\n'
      << bold(capital(title_of(list.of)) + " by " + std::string(title_of(list.by)), style) << ": "
      << in_words(total) << '\n';
  if (list.rows.empty()) return;
  const bool with_no_free = list.total.no_free != amount{} && list.total.with_free != amount{};
  std::vector<column> columns = {{"", "bytes", column_kind::bytes},
                                 {"", "share", column_kind::share},
                                 {"", "blocks", column_kind::count}};
  if (with_no_free) columns.push_back({"", "no-free", column_kind::bytes});
  columns.push_back({"", list.by == group_key::path ? "call path, innermost function first"
                                                    : std::string(title_of(list.by))});
  aligned_table table(out, columns, style, "  ");
  const std::size_t shown = std::min(rows_shown(list.by, top), list.rows.size());
  split_amount hidden = list.left_out_sum;
  for (std::size_t i = shown; i < list.rows.size(); ++i) hidden += list.rows[i].sum;
  for (std::size_t i = 0; i < shown; ++i) {
    const auto& [name, sum] = list.rows[i];
    const amount both = sum.sum();
    table_row cells = {both.bytes, human_share(both.bytes, total.bytes), both.blocks};
    if (with_no_free) cells.emplace_back(sum.no_free.bytes);
    if (list.by == group_key::path) {
      const auto lines = frame_lines(report.names, name);
      cells.emplace_back(lines[0]);
      table.add(cells);
      for (std::size_t j = 1; j < lines.size(); ++j) table.add_below(lines[j]);
    } else {
      cells.emplace_back(list.by == group_key::process ? process_name(report, name)
                                                       : report.names.name(list.by, name));
      table.add(cells);
    }
  }
  table.finish();
  const std::size_t more = list.rows.size() - shown + list.left_out;
  if (more > 0) {
    out << "  ... and " << grouped(std::uint64_t{more}) << " more: " << in_words(hidden.sum())
        << '\n';
  }
}

void print_report(std::ostream& out, const run_report& report, const print_style& style,
                  std::optional<std::size_t> top) {
  out << bold("Run " + quoted_name(report.run->name), style);
  if (report.traces.size() != 1) {
    out << ": " << grouped(std::uint64_t{report.traces.size()}) << " traces";
  }
  out << '\n';
  if (report.filter.is_on()) {
    out << alarming("Filtered", style) << " by " << report.filter.in_words()
        << ": sums and lists count only what the filter leaves.\n";
  }
  const std::size_t most_traces = top.value_or(most_rows);
  for (std::size_t i = 0; i < std::min(most_traces, report.traces.size()); ++i) {
    out << (report.traces.size() > 1 ? "\n" : "");
    print_trace(out, report.traces[i], report.filter.is_on(), style);
  }
  if (report.traces.size() > most_traces) {
    out << "\n... and " << grouped(std::uint64_t{report.traces.size() - most_traces})
        << " more traces (--top)\n";
  }
  for (const auto& list : report.lists) print_list(out, report, list, style, top);
  if (report.complete) return;
  out << '\n' << alarming("This run is not known to be complete:", style);
  std::uint64_t lossy = 0;
  for (const auto& figures : report.traces) lossy += figures.trace->losses.empty() ? 0 : 1;
  if (lossy > 0) {
    out << ' ' << grouped(lossy) << (lossy == 1 ? " trace" : " traces")
        << " with losses, which are named above.";
  }
  if (report.from_rows) out << " Its figures were computed from CSV tables.";
  if (report.traces.empty()) out << " it has no trace.";
  out << '\n';
}

}  // namespace

std::string in_words(const amount& what) {
  return human_bytes(what.bytes) + " in " + grouped(what.blocks) +
         (what.blocks == 1 ? " block" : " blocks");
}

void print_reports_as_text(std::ostream& out, const std::vector<run_report>& reports,
                           const print_style& style, std::optional<std::size_t> top) {
  std::string_view between;
  for (const auto& report : reports) {
    out << between;
    print_report(out, report, style, top);
    between = "\n";
  }
}

}  // namespace kiv::report
