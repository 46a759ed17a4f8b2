#include <algorithm>
#include <ostream>

#include "report/human.h"
#include "report/print_report.h"
#include "report/printable.h"
#include "report/timeline_picture.h"

namespace kiv::report {
namespace {

constexpr std::size_t picture_columns = 60;
constexpr std::size_t label_width = 13;
constexpr std::size_t most_losses = 20;

// One line of what the trace was. Empty values are left out.
void item(std::ostream& out, const print_style& style, std::string_view label,
          const std::string& value) {
  if (value.empty()) return;
  std::string padded(label);
  padded.resize(label_width, ' ');
  out << "  " << dim(padded, style);
  const std::size_t used = label_width + 2;
  out << (style.width && *style.width > 2 * used ? shortened(value, *style.width - used) : value)
      << '\n';
}

std::string who(const profile& trace) {
  std::string text = printable(trace.user);
  if (!trace.host.empty()) text += (text.empty() ? "on " : " on ") + printable(trace.host);
  if (trace.environment.empty()) return text;
  const std::string environment = printable(trace.environment);
  return text.empty() ? environment : text + " (" + environment + ")";
}

std::string when(const profile& trace) {
  if (trace.start.empty()) return {};
  const auto lasted = milliseconds_between(trace.start, trace.end);
  return printable(trace.start) + " to " + (trace.end.empty() ? "?" : printable(trace.end)) +
         (lasted ? ", " + human_duration(*lasted) : "");
}

void print_losses(std::ostream& out, const profile& trace, const print_style& style) {
  if (trace.losses.empty()) {
    item(out, style, "complete",
         trace.from_rows ? "unknown: computed from CSV tables, which do not tell" : "yes");
    return;
  }
  out << "  " << alarming("NOT COMPLETE", style) << ": this is missing or wrong in the trace:\n";
  for (std::size_t i = 0; i < std::min(trace.losses.size(), most_losses); ++i) {
    const loss& lost = trace.losses[i];
    out << "    " << alarming(grouped(lost.count) + " x " + printable(lost.what), style);
    if (!lost.first.empty()) {
      out << (lost.count > 1 ? ", first: " : ": ") << printable(lost.first);
    }
    out << '\n';
  }
  if (trace.losses.size() > most_losses) {
    out << "    and " << grouped(std::uint64_t{trace.losses.size() - most_losses})
        << " more kinds (--json)\n";
  }
}

void print_memory_over_time(std::ostream& out, const profile& trace, const print_style& style) {
  const std::string picture = timeline_picture(trace, picture_columns);
  item(out, style, "live memory", picture);
  std::string text;
  if (trace.peak.record > 0) {
    text = "peak " + human_bytes(trace.peak.live.bytes) + " (" +
           human_bytes(trace.peak.live.tot_bytes) + " with rounding) at record " +
           grouped(trace.peak.record);
    if (!trace.peak.time.empty()) text += ", " + printable(trace.peak.time);
  }
  item(out, style, "", text);
  if (!trace.timeline.empty()) {
    item(out, style, "", "end  " + human_bytes(trace.timeline.back().last_bytes));
  }
}

void print_sums(std::ostream& out, const trace_figures& figures, const print_style& style) {
  const std::pair<std::string_view, const split_amount*> sums[] = {
      {"allocated", &figures.allocated},
      {"freed", &figures.freed},
      {"leaked", &figures.leaked},
      {"reset", &figures.reset},
      {"released", &figures.released},
      {"live at the end", &figures.live},
      {"live at the peak", &figures.at_peak},
      {"temporary", &figures.temporary}};
  const bool with_no_free =
      std::ranges::any_of(sums, [](const auto& sum) { return sum.second->no_free != amount{}; });
  std::vector<column> columns = {{"", ""},
                                 {"", "with-free", column_kind::bytes},
                                 {"", "rounded up", column_kind::bytes},
                                 {"", "blocks", column_kind::count}};
  if (with_no_free) {
    columns.push_back({"", "no-free", column_kind::bytes});
    columns.push_back({"", "rounded up", column_kind::bytes});
    columns.push_back({"", "blocks", column_kind::count});
  }
  aligned_table table(out, columns, style, "  ");
  for (const auto& [name, sum] : sums) {
    // Leaks have an obligation to free, released memory has none.
    table_row cells = {std::string(name), sum->with_free.bytes, sum->with_free.tot_bytes,
                       sum->with_free.blocks};
    if (with_no_free) {
      cells.insert(cells.end(), {sum->no_free.bytes, sum->no_free.tot_bytes, sum->no_free.blocks});
    }
    table.add(cells);
  }
  table.finish();
}

}  // namespace

void print_trace(std::ostream& out, const trace_figures& figures, bool is_filtered,
                 const print_style& style) {
  const profile& trace = *figures.trace;
  out << bold("Process " + std::to_string(trace.pid) + ": " + printable(trace.program), style)
      << '\n';
  print_losses(out, trace, style);
  item(out, style, "who", who(trace));
  item(out, style, "description", printable(trace.description));
  item(out, style, "when", when(trace));
  item(out, style, "records",
       grouped(trace.records) + " of memory, " + grouped(std::uint64_t{figures.processes}) +
           (figures.processes == 1 ? " process, " : " processes, ") +
           grouped(std::uint64_t{figures.ids}) +
           (figures.ids == 1 ? " allocation id" : " allocation ids"));
  item(out, style, "heap",
       human_bytes(trace.heap_bytes) + " grown, " + human_bytes(trace.gap_bytes) + " of gaps");
  print_memory_over_time(out, trace, style);
  for (const auto& note : trace.notes) item(out, {.color = style.color}, "note", printable(note));
  out << '\n';
  if (is_filtered) out << "  Of the blocks that the filter leaves:\n";
  print_sums(out, figures, style);
}

}  // namespace kiv::report
