#include "schema.h"

#include "views.h"

namespace kiv::db {
namespace {

constexpr table_index all_indexes[] = {
    {"memory_by_rec", "memory", "run_id, main_pid, rec",
     "type, malid, color, location, pid, arc, caller_object, caller_function, callee_object, "
     "callee_function, query_seq, size, tot_size, size_change, linked_rec, global_live_size, "
     "global_nf_size"},
    {"freemem_by_alloc", "freemem", "run_id, main_pid, alloc_rec", "free_rec, type"},
    {"hashloc_by_location", "hashloc", "run_id, main_pid, location", "source_line"},
    {"malid_by_malid", "malid", "run_id, main_pid, malid", ""},
    {"color_by_color", "color", "run_id, main_pid, malid, color", "color_name"},
    {"arcs_by_arc", "arcs", "run_id, main_pid, pid, arc", ""},
    {"functions_by_number", "functions", "run_id, main_pid, object, function_number", ""},
    {"process_by_pid", "process", "run_id, main_pid, pid", "session_name"},
    {"queryevents_by_seq", "queryevents", "run_id, main_pid, seq", "qid"},
    {"queries_by_qid", "queries", "run_id, main_pid, qid", ""},
    {"marker_by_marker", "marker", "run_id, main_pid, marker", "rec"},
    {"sbrk_by_row", "sbrk", "run_id, main_pid, sbrk_row", ""},
};

// What kivdb itself notes: the runs it imported, and the rows it could not read.
constexpr std::string_view own_tables = R"(
CREATE TABLE imports (
  run_id TEXT NOT NULL,
  source TEXT NOT NULL,
  imported_at TEXT NOT NULL,
  data_separator TEXT NOT NULL,
  fun_separator TEXT NOT NULL,
  row_count INTEGER NOT NULL,
  rejected_count INTEGER NOT NULL
);
CREATE TABLE rejected_rows (
  run_id TEXT NOT NULL,
  file TEXT NOT NULL,
  line INTEGER NOT NULL,
  reason TEXT NOT NULL,
  row_begin TEXT NOT NULL
);
CREATE INDEX rejected_rows_by_run ON rejected_rows (run_id);
)";

std::string_view sqlite_type(column_type type) {
  return type == column_type::i64 || type == column_type::u64 ? "INTEGER" : "TEXT";
}

std::string create_table(const csv_table& table) {
  std::string sql = "CREATE TABLE " + std::string(table.name) + " (";
  std::string_view separator = "\n";
  for (const auto& column : table.columns) {
    sql += separator;
    sql += "  " + std::string(column.name) + ' ' + std::string(sqlite_type(column.type));
    sql += column.label.empty() ? std::string(" NOT NULL")
                                : " AS ('" + std::string(column.label) + "') VIRTUAL";
    separator = ",\n";
  }
  return sql + "\n);\n";
}

}  // namespace

std::span<const table_index> indexes() { return all_indexes; }

std::string sqlite_schema() {
  std::string sql;
  for (const auto& table : csv_tables()) sql += create_table(table);
  sql += own_tables;
  for (const auto& index : indexes()) {
    sql += "CREATE INDEX " + std::string(index.name) + " ON " + std::string(index.table) + " (" +
           std::string(index.keys) + (index.included.empty() ? "" : ", ") +
           std::string(index.included) + ");\n";
  }
  for (const auto& v : views()) {
    const std::string name = v.name + (v.stored ? "_query" : "");
    sql += "\n-- " + v.description + "\nCREATE VIEW " + name + " AS\n" + v.select + ";\n";
    if (!v.stored) continue;
    sql += "CREATE TABLE " + v.name + " AS SELECT * FROM " + name + " WHERE 0;\n";
    sql += "CREATE INDEX " + v.name + "_by_run ON " + v.name + " (run_id, main_pid);\n";
  }
  return sql;
}

std::string insert_statement(const csv_table& table) {
  std::string names, marks;
  for (const auto& column : table.columns) {
    if (!column.label.empty()) continue;
    names += (names.empty() ? "" : ", ") + std::string(column.name);
    marks += marks.empty() ? "?" : ", ?";
  }
  return "INSERT INTO " + std::string(table.name) + " (" + names + ") VALUES (" + marks + ")";
}

}  // namespace kiv::db
