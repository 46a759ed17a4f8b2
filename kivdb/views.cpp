#include "views.h"

#include <algorithm>
#include <initializer_list>

#include "block_groups.h"
#include "view_keys.h"

namespace kiv::db {
namespace {

// Live memory after a row of `memory` (given its alias): both kinds.
std::string live(const std::string& m) {
  return m + ".global_live_size + " + m + ".global_nf_size";
}
std::string live_tot(const std::string& m) {
  return m + ".global_live_tot_size + " + m + ".global_nf_tot_size";
}

std::string sum_if(const std::string& condition, const std::string& value) {
  return "SUM(CASE WHEN " + condition + " THEN " + value + " ELSE 0 END)";
}
std::string count_if(const std::string& condition) { return sum_if(condition, "1"); }

// Live memory at the end of record `rec` of the row `t`. A condition on m.rec besides the equality
// would lead SQLite to scan the whole trace.
std::string live_at(const std::string& rec) {
  return "CASE WHEN t." + rec + " > 0 THEN COALESCE((SELECT MAX(" + live("m") +
         ") FROM memory m WHERE m.run_id = t.run_id AND m.main_pid = t.main_pid AND m.rec = t." +
         rec + "), 0) ELSE 0 END";
}

// "SUM(g.a) AS a, SUM(g.b) AS b"
std::string sums(std::initializer_list<std::string> columns) {
  std::string sql;
  for (const auto& column : columns) {
    sql += sql.empty() ? "SUM(g." : ", SUM(g.";
    sql += column;
    sql += ") AS ";
    sql += column;
  }
  return sql;
}

void add_base(std::vector<view>& all) {
  all.push_back({"id_names", "allocation ids with a name that means the same in every run",
                 "SELECT run_id, main_pid, malid, CASE WHEN COALESCE(description, '') = '' THEN "
                 "reserve_type ELSE category || ' ' || description END AS id_name, "
                 "reserve_type FROM malid"});
  all.push_back({"block",
                 "every block (a, n) and every resize of one (r), with the record that ended it",
                 "SELECT m.run_id, m.main_pid, m.rec, m.type, m.malid, m.color, m.location, "
                 "m.pid, m.arc, m.caller_object, m.caller_function, m.callee_object, "
                 "m.callee_function, m.query_seq, m.size, m.tot_size, m.size_change, "
                 "f.free_rec AS end_rec, f.type AS end_type FROM memory m LEFT JOIN freemem f "
                 "ON f.run_id = m.run_id AND f.main_pid = m.main_pid AND f.alloc_rec = m.rec "
                 "WHERE m.type IN ('a', 'n') OR (m.type = 'r' AND m.linked_rec <> 0)"});
  all.push_back({"peak", "the record at which most memory was live, per trace",
                 "WITH t AS (SELECT m.run_id, m.main_pid, MAX(" + live("m") +
                     ") AS peak_bytes FROM memory m WHERE m.rec > 0 GROUP BY m.run_id, "
                     "m.main_pid), r AS (SELECT t.run_id, t.main_pid, t.peak_bytes, (SELECT "
                     "MIN(m.rec) FROM memory m WHERE m.run_id = t.run_id AND m.main_pid = "
                     "t.main_pid AND m.rec > 0 AND " +
                     live("m") +
                     " = t.peak_bytes) AS peak_rec FROM t) SELECT r.run_id, r.main_pid, "
                     "r.peak_rec, r.peak_bytes, m.time AS peak_time, " +
                     live_tot("m") +
                     " AS peak_tot_bytes FROM r JOIN memory m ON m.run_id = r.run_id AND "
                     "m.main_pid = r.main_pid AND m.rec = r.peak_rec",
                 true});
  all.push_back({"block_groups",
                 "sums over blocks of one kind, id, colour, line, arc and query, which the views "
                 "by_*, peak_by_* and churn_by_* add up",
                 block_groups_select(), true});
}

void add_family(std::vector<view>& all, const view_key& key) {
  std::string grouped = "g.run_id, g.main_pid";
  for (const auto& column : key.columns) grouped += ", g." + column;
  const std::string begin = "WITH t AS (SELECT " + grouped + ", " + key.extra;
  const std::string end = " FROM block_groups g GROUP BY " + grouped +
                          ") SELECT t.run_id, t.main_pid, " + key.names + ", ";
  all.push_back(
      {"by_" + key.name, "blocks made, mean size, freed and live at the end, by " + key.title,
       begin +
           sums({"allocs", "alloc_bytes", "alloc_tot_bytes", "resizes", "resize_bytes", "frees",
                 "live_blocks", "live_bytes", "live_tot_bytes"}) +
           end +
           "t.allocs, t.alloc_bytes, t.alloc_tot_bytes, CASE WHEN t.allocs = 0 THEN 0 ELSE "
           "CAST(t.alloc_bytes / t.allocs AS BIGINT) END AS mean_bytes, t.resizes, "
           "t.resize_bytes, t.frees, t.live_blocks, t.live_bytes, t.live_tot_bytes FROM t"});
  all.push_back({"peak_by_" + key.name, "what was live at the peak, by " + key.title,
                 begin + sums({"peak_blocks", "peak_bytes", "peak_tot_bytes"}) + end +
                     "t.peak_blocks, t.peak_bytes, t.peak_tot_bytes FROM t WHERE "
                     "t.peak_blocks > 0"});
  all.push_back({"churn_by_" + key.name,
                 "blocks freed within 100 memory records of their making, by " + key.title,
                 begin + sums({"short_lived", "short_lived_bytes", "blocks"}) + end +
                     "t.short_lived, t.short_lived_bytes, t.blocks, 100 * t.short_lived / "
                     "t.blocks AS percent_of_blocks FROM t WHERE t.short_lived > 0"});
}

void add_blocks(std::vector<view>& all) {
  all.push_back({"with_free_no_free", "memory with an obligation to free against memory without",
                 "SELECT g.run_id, g.main_pid, g.kind, " +
                     sums({"allocs", "alloc_bytes", "alloc_tot_bytes", "frees", "live_blocks",
                           "live_bytes", "live_tot_bytes"}) +
                     " FROM block_groups g GROUP BY g.run_id, g.main_pid, g.kind"});
  all.push_back(
      {"rounding_by_id", "bytes lost to the allocator's rounding, by allocation id",
       "SELECT run_id, main_pid, malid, id_name, allocs, alloc_bytes, alloc_tot_bytes "
       "- alloc_bytes AS rounding_bytes, CASE WHEN alloc_bytes = 0 THEN 0 ELSE "
       "CAST(100 * (alloc_tot_bytes - alloc_bytes) / alloc_bytes AS BIGINT) END AS "
       "rounding_percent, live_tot_bytes - live_bytes AS live_rounding_bytes FROM by_id"});
  all.push_back({"lifetime_by_id", "how many memory records blocks lived, by allocation id",
                 "WITH t AS (SELECT g.run_id, g.main_pid, g.malid, MIN(g.shortest_life) AS "
                 "shortest, MAX(g.longest_life) AS longest, " +
                     sums({"ended", "together_lived", "live_blocks"}) +
                     " FROM block_groups g GROUP BY g.run_id, g.main_pid, g.malid) SELECT "
                     "t.run_id, t.main_pid, " +
                     find_view_key("id")->names +
                     ", t.ended, t.shortest, CASE WHEN t.ended = 0 THEN NULL ELSE "
                     "CAST(t.together_lived / t.ended AS BIGINT) END AS mean, t.longest, "
                     "t.live_blocks AS never_ended FROM t"});
  all.push_back(
      {"lifetimes", "number and bytes of blocks by how many memory records they lived",
       "WITH t AS (SELECT b.run_id, b.main_pid, b.size, CASE WHEN b.end_rec IS NULL THEN NULL "
       "WHEN b.end_rec - b.rec <= 1 THEN 1 WHEN b.end_rec - b.rec <= 10 THEN 10 WHEN b.end_rec - "
       "b.rec <= 100 THEN 100 WHEN b.end_rec - b.rec <= 1000 THEN 1000 WHEN b.end_rec - b.rec <= "
       "10000 THEN 10000 WHEN b.end_rec - b.rec <= 100000 THEN 100000 ELSE 1000000000 END AS "
       "up_to FROM block b) SELECT t.run_id, t.main_pid, CASE WHEN t.up_to IS NULL THEN 'live at "
       "the end' WHEN t.up_to = 1000000000 THEN 'more' ELSE 'up to ' || CAST(t.up_to AS "
       "VARCHAR(20)) END AS records, t.up_to, COUNT(*) AS blocks, SUM(t.size) AS bytes FROM t "
       "GROUP BY t.run_id, t.main_pid, t.up_to"});
  all.push_back({"live_blocks", "every block that is live at the end, with the names of its owner",
                 "SELECT t.run_id, t.main_pid, t.rec, t.size, t.tot_size, " +
                     find_view_key("color")->names + ", " + find_view_key("line")->names + ", " +
                     "t.pid, " + process_name() + ", t.arc, " + arc_names() +
                     " FROM block t WHERE t.end_rec IS NULL"});
}

void add_time(std::vector<view>& all) {
  all.push_back({"heap_growth", "growth of the heap and its gaps, and who was running",
                 "SELECT t.run_id, t.main_pid, t.sbrk_row, t.record, t.time, CASE WHEN t.type = "
                 "'S' THEN 'growth' ELSE 'gap' END AS kind, CASE WHEN t.type = 'S' THEN "
                 "t.size_or_c_sbrk ELSE t.size_or_c_sbrk - t.addr_or_l_sbrk END AS bytes, "
                 "t.sbrk_total, t.gap_total, t.pid, " +
                     process_name() + ", t.arc, " + arc_names() + " FROM sbrk t"});
  all.push_back({"heap_by_arc", "growth of the heap by caller and callee",
                 "WITH t AS (SELECT b.run_id, b.main_pid, b.pid, b.arc, MIN(b.caller_object) AS "
                 "caller_object, MIN(b.caller_function) AS caller_function, MIN(b.callee_object) "
                 "AS callee_object, MIN(b.callee_function) AS callee_function, COUNT(*) AS "
                 "growths, SUM(b.size_or_c_sbrk) AS bytes FROM sbrk b WHERE b.type = 'S' GROUP BY "
                 "b.run_id, b.main_pid, b.pid, b.arc) SELECT t.run_id, t.main_pid, t.pid, t.arc, " +
                     arc_names() + ", t.growths, t.bytes FROM t"});
  const std::string intervals =
      "WITH t AS (SELECT k.run_id, k.main_pid, k.marker, k.time, k.type, k.subtype, "
      "k.marker_text, k.rec, COALESCE(LAG(k.rec) OVER (PARTITION BY k.run_id, k.main_pid ORDER "
      "BY k.marker), 0) AS from_rec FROM marker k) ";
  all.push_back({"marker_change", "live memory at every marker and the change since the one before",
                 intervals +
                     "SELECT t.run_id, t.main_pid, t.marker, t.time, t.type, t.subtype, "
                     "t.marker_text, t.from_rec, t.rec, " +
                     live_at("rec") + " AS live_bytes, " + live_at("rec") + " - " +
                     live_at("from_rec") + " AS live_change FROM t"});
  all.push_back(
      {"marker_change_by_id",
       "change of live memory between a marker and the one before, by allocation id",
       intervals + ", c AS (SELECT t.run_id, t.main_pid, t.marker, m.malid, COUNT(*) AS records, " +
           count_if("m.type IN ('a', 'n')") +
           " AS allocs, SUM(m.size_change) AS live_change FROM t JOIN memory m ON m.run_id = "
           "t.run_id AND m.main_pid = t.main_pid AND m.rec > t.from_rec AND m.rec <= t.rec GROUP "
           "BY t.run_id, t.main_pid, t.marker, m.malid) SELECT t.run_id, t.main_pid, t.marker, " +
           find_view_key("id")->names + ", t.records, t.allocs, t.live_change FROM c t"});
}

void add_runs(std::vector<view>& all) {
  const std::string of_trace = " WHERE x.run_id = r.run_id AND x.main_pid = r.main_pid";
  all.push_back(
      {"run_summary", "who, when and how much, per trace of a run",
       "WITH m AS (SELECT run_id, main_pid, MAX(rec) AS records, " +
           sum_if("type IN ('a', 'n')", "1") + " AS allocs, " +
           sum_if("type IN ('a', 'n')", "size") + " AS alloc_bytes, " + sum_if("type = 'f'", "1") +
           " AS frees, " + sum_if("type = 'f' AND linked_rec = 0", "1") +
           " AS frees_without_block, " + sum_if("type = 'r' AND linked_rec = 0", "1") +
           " AS resizes_without_block FROM memory GROUP BY run_id, main_pid) SELECT r.run_id, "
           "r.main_pid, "
           "r.program, r.environment, r.account, r.host, r.user_name, r.description, "
           "r.start_time, r.end_time, COALESCE(m.records, 0) AS records, COALESCE(m.allocs, 0) "
           "AS allocs, COALESCE(m.alloc_bytes, 0) AS alloc_bytes, COALESCE(m.frees, 0) AS frees, "
           "COALESCE(m.frees_without_block, 0) AS frees_without_block, "
           "COALESCE(m.resizes_without_block, 0) AS resizes_without_block, (SELECT COUNT(*) FROM "
           "process x" +
           of_trace + ") AS processes, (SELECT COUNT(*) FROM malid x" + of_trace +
           ") AS ids, p.peak_rec, COALESCE(p.peak_bytes, 0) AS peak_bytes, "
           "COALESCE(p.peak_tot_bytes, 0) AS peak_tot_bytes, p.peak_time, COALESCE((SELECT MAX(" +
           live("x") + ") FROM memory x" + of_trace +
           " AND x.rec = m.records), 0) AS live_bytes, COALESCE((SELECT MAX(" + live_tot("x") +
           ") FROM memory x" + of_trace +
           " AND x.rec = m.records), 0) AS live_tot_bytes, COALESCE((SELECT "
           "MAX(x.sbrk_total) FROM sbrk x" +
           of_trace + "), 0) AS heap_bytes, COALESCE((SELECT MAX(x.gap_total) FROM sbrk x" +
           of_trace +
           "), 0) AS gap_bytes FROM runs r LEFT JOIN m ON m.run_id = r.run_id AND m.main_pid = "
           "r.main_pid LEFT JOIN peak p ON p.run_id = r.run_id AND p.main_pid = r.main_pid",
       true});
  all.push_back(
      {"lost",
       "what the trace of a run lacks: frees without a block, unknown ids and lines, its end",
       "WITH u AS (SELECT g.run_id, g.main_pid, SUM(CASE WHEN i.malid IS NULL THEN g.blocks ELSE "
       "0 END) AS of_unknown_ids, SUM(CASE WHEN l.location IS NULL THEN g.blocks ELSE 0 END) AS "
       "of_unknown_lines FROM block_groups g LEFT JOIN (SELECT DISTINCT run_id, main_pid, malid "
       "FROM malid) i ON i.run_id = g.run_id AND i.main_pid = g.main_pid AND i.malid = g.malid "
       "LEFT JOIN (SELECT DISTINCT run_id, main_pid, location FROM hashloc) l ON l.run_id = "
       "g.run_id AND l.main_pid = g.main_pid AND l.location = g.location GROUP BY g.run_id, "
       "g.main_pid) SELECT r.run_id, r.main_pid, r.frees_without_block, r.resizes_without_block, "
       "COALESCE(u.of_unknown_ids, 0) AS blocks_of_unknown_ids, COALESCE(u.of_unknown_lines, 0) "
       "AS blocks_of_unknown_lines, CASE WHEN EXISTS (SELECT 1 FROM marker k WHERE k.run_id = "
       "r.run_id AND k.main_pid = r.main_pid AND k.type = 'Record' AND k.subtype = 'End') THEN 1 "
       "ELSE 0 END AS replayed_to_its_end FROM run_summary r LEFT JOIN u ON u.run_id = r.run_id "
       "AND u.main_pid = r.main_pid"});
}

std::vector<view> make_views() {
  std::vector<view> all;
  add_base(all);
  for (const auto& key : view_keys()) add_family(all, key);
  add_blocks(all);
  add_time(all);
  add_runs(all);
  return all;
}

}  // namespace

const std::vector<view>& views() {
  static const std::vector<view> all = make_views();
  return all;
}

const view* find_view(std::string_view name) {
  const auto found = std::ranges::find(views(), name, &view::name);
  return found == views().end() ? nullptr : &*found;
}

}  // namespace kiv::db
