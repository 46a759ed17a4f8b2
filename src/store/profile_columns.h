#pragma once

#include "profile/profile.h"

namespace kiv::store {

// Hands the lists of a profile to `visit`, each with its table and a function that hands the
// columns of one entry, in the order of the schema, to a row. For saving and loading alike.
template <class Profile>
void visit_lists(Profile& p, auto&& visit) {
  visit("trace_loss", p.losses, [](auto&& row, auto& v) { row(v.what, v.count, v.first); });
  visit("trace_note", p.notes, [](auto&& row, auto& v) { row(v); });
  visit("id_name", p.ids, [](auto&& row, auto& v) { row(v.number, v.name, v.reserve_type); });
  visit("color_name", p.colors, [](auto&& row, auto& v) { row(v.id, v.number, v.name); });
  visit("line_name", p.lines, [](auto&& row, auto& v) { row(v); });
  visit("function_name", p.functions, [](auto&& row, auto& v) { row(v.object, v.name); });
  visit("call_path", p.paths, [](auto&& row, auto& v) { row(v.parent, v.function); });
  visit("process_name", p.processes, [](auto&& row, auto& v) { row(v.pid, v.name); });
  visit("query_text", p.queries, [](auto&& row, auto& v) { row(v); });
  visit("block_group", p.groups, [](auto&& row, auto&& v) {
    row(v.no_free, v.id, v.color, v.line, v.path, v.process, v.query, v.resizes);
    for (auto& f : v.figures) row(f.blocks, f.bytes, f.tot_bytes);
  });
  visit("histogram", p.histograms,
        [](auto&& row, auto& v) { row(v.of, v.no_free, v.id, v.exponent, v.blocks, v.bytes); });
  visit("heap_change", p.heap,
        [](auto&& row, auto& v) { row(v.gap, v.path, v.process, v.count, v.bytes); });
  visit("timeline_step", p.timeline, [](auto&& row, auto& v) {
    row(v.last_record, v.time, v.highest_bytes, v.last_bytes, v.heap_bytes);
  });
  visit("program_mark", p.marks,
        [](auto&& row, auto& v) { row(v.record, v.time, v.text, v.live_bytes, v.live_blocks); });
}

// The lists of levels within steps and marks, each with its table.
template <class Profile>
void visit_levels(Profile& p, auto&& visit) {
  visit("timeline_level", p.timeline);
  visit("mark_level", p.marks);
}

// The columns of `trace` behind its key and its run.
void trace_columns(auto&& row, auto& p) {
  row(p.run, p.pid, p.program, p.environment, p.account, p.host, p.user, p.description, p.start,
      p.end, p.records, p.heap_bytes, p.gap_bytes, p.from_rows, p.peak.live.blocks,
      p.peak.live.bytes, p.peak.live.tot_bytes, p.peak.record, p.peak.time);
}

}  // namespace kiv::store
