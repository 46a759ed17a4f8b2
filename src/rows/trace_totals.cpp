#include "rows/trace_totals.h"

#include <set>

namespace kiv::rows {
namespace {

std::uint64_t unsigned_at(const table_rows& rows, std::string_view column) {
  return static_cast<std::uint64_t>(rows.number(rows.column(column)));
}

std::string differs(std::int64_t pid, std::string_view what, std::uint64_t in_rows,
                    std::uint64_t in_trace) {
  if (in_rows == in_trace) return {};
  return "the tables do not belong to the trace with the process id " + std::to_string(pid) +
         ", or are not whole: " + std::to_string(in_rows) + " " + std::string(what) +
         " in the rows, " + std::to_string(in_trace) + " in the trace";
}

}  // namespace

bool trace_totals::add(run_reading& reading, std::string_view table, const table_rows& rows) {
  if (table == "memory") return add_memory(reading, rows);
  if (table == "freemem") {
    totals& t = traces_[rows.number(1)];
    const char type = rows.text(4)[0];
    t.freed += type == 'f';
    t.with_id += type == 'F';
    t.reset += type == 'Z';
  } else if (table == "sbrk") {
    traces_[rows.number(1)].heap_bytes = unsigned_at(rows, "sbrk_total");
  }
  return true;
}

bool trace_totals::add_memory(run_reading& reading, const table_rows& rows) {
  static const std::size_t type_at = rows.column("type"), rec_at = rows.column("rec"),
                           linked_at = rows.column("linked_rec"),
                           wf_at = rows.column("global_live_size"),
                           nf_at = rows.column("global_nf_size");
  const char type = rows.text(type_at)[0];
  const auto record = static_cast<std::uint64_t>(rows.number(rec_at));
  std::string reason;
  if (!sequence_.accept(rows.number(1), record, type == 'r' && rows.number(linked_at) == 0,
                        reason)) {
    return reading.fail(rows.place() + ": " + reason);
  }
  totals& t = traces_[rows.number(1)];
  t.records = record;
  t.made += type == 'a' || type == 'n';
  t.live_bytes = static_cast<std::uint64_t>(rows.number(wf_at)) +
                 static_cast<std::uint64_t>(rows.number(nf_at));
  return true;
}

std::string trace_totals::compare(const run_profile& run) const {
  std::set<std::int64_t> known;
  for (const auto& p : run.traces) {
    known.insert(p.pid);
    const auto found = traces_.find(p.pid);
    const totals t = found == traces_.end() ? totals{} : found->second;
    block_group all;
    for (const auto& g : p.groups) {
      for (std::size_t i = 0; i < figure_count; ++i) all.figures[i] += g.figures[i];
    }
    const auto blocks = [&](figure f) { return all[f].blocks; };
    const struct {
      std::string_view what;
      std::uint64_t in_rows, in_trace;
    } pairs[] = {
        {"memory records", t.records, p.records},
        {"blocks made", t.made, blocks(figure::made)},
        {"blocks freed", t.freed, blocks(figure::freed)},
        {"blocks given back with their id", t.with_id,
         blocks(figure::left_with_id) + blocks(figure::released)},
        {"blocks given back by a reset", t.reset, blocks(figure::reset)},
        {"bytes of heap growth", t.heap_bytes, p.heap_bytes},
        // Books with faults count blocks that they never had.
        {"bytes live at the end", t.live_bytes,
         p.losses.empty() ? all[figure::live].bytes : t.live_bytes},
    };
    for (const auto& pair : pairs) {
      std::string reason = differs(p.pid, pair.what, pair.in_rows, pair.in_trace);
      if (!reason.empty()) return reason;
    }
  }
  for (const auto& [pid, t] : traces_) {
    if (known.contains(pid) || t.records == 0) continue;
    return "rows of a trace with the process id " + std::to_string(pid) + ", which the run " +
           "does not have";
  }
  return {};
}

}  // namespace kiv::rows
