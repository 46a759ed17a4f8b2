#include "view_keys.h"

#include <algorithm>

namespace kiv::db {
namespace {

std::string id_name() {
  return "COALESCE(" + lookup("n.id_name", "id_names", "n.malid = t.malid") +
         ", 'unknown id') AS id_name";
}

// A process that still ran when the trace ended has no arcs, but its functions may have names.
std::string end_of_arc(const std::string& end) {
  return "COALESCE(" +
         lookup("n." + end + "_object_name || ':' || n." + end + "_function_name", "arcs",
                "n.pid = t.pid AND n.arc = t.arc") +
         ", " +
         lookup("n.object_name || ':' || n.function_name", "functions",
                "n.object = t." + end + "_object AND n.function_number = t." + end + "_function") +
         ", CAST(t." + end + "_object AS VARCHAR(20)) || ':' || CAST(t." + end +
         "_function AS VARCHAR(20))) AS " + end;
}

std::vector<view_key> make_keys() {
  std::vector<view_key> keys;
  keys.push_back({"id", "allocation id", {"malid"}, "", "t.malid, " + id_name(), {"id_name"}});
  keys.push_back({"color",
                  "colour of an allocation id",
                  {"malid", "color"},
                  "",
                  "t.malid, " + id_name() + ", t.color, COALESCE(" +
                      lookup("n.color_name", "color", "n.malid = t.malid AND n.color = t.color") +
                      ", 'unknown colour') AS color_name",
                  {"id_name", "color_name"}});
  keys.push_back({"line",
                  "source line",
                  {"location"},
                  "",
                  "t.location, COALESCE(" +
                      lookup("n.source_line", "hashloc", "n.location = t.location") +
                      ", 'unknown line') AS source_line",
                  {"source_line"}});
  keys.push_back({"arc",
                  "caller and callee of a process",
                  {"pid", "arc"},
                  "MIN(g.caller_object) AS caller_object, MIN(g.caller_function) AS "
                  "caller_function, MIN(g.callee_object) AS callee_object, "
                  "MIN(g.callee_function) AS callee_function, ",
                  "t.pid, t.arc, " + arc_names(),
                  {"caller", "callee"}});
  keys.push_back({"process", "process", {"pid"}, "", "t.pid, " + process_name(), {"process_name"}});
  keys.push_back({"query",
                  "SQL statement",
                  {"qid"},
                  "",
                  "t.qid, CASE WHEN t.qid IS NULL THEN '(no finished SQL operation)' ELSE "
                  "COALESCE(" +
                      lookup("n.query_text", "queries", "n.qid = t.qid") +
                      ", 'unknown query') END AS query_text",
                  {"query_text"}});
  return keys;
}

}  // namespace

std::string lookup(const std::string& expression, const std::string& table,
                   const std::string& condition) {
  return "(SELECT MIN(" + expression + ") FROM " + table +
         " n WHERE n.run_id = t.run_id AND n.main_pid = t.main_pid AND " + condition + ")";
}

std::string process_name() {
  return "COALESCE(" + lookup("n.session_name", "process", "n.pid = t.pid") +
         ", 'default process') AS process_name";
}

std::string arc_names() { return end_of_arc("caller") + ", " + end_of_arc("callee"); }

const std::vector<view_key>& view_keys() {
  static const std::vector<view_key> keys = make_keys();
  return keys;
}

const view_key* find_view_key(std::string_view name) {
  const auto found = std::ranges::find(view_keys(), name, &view_key::name);
  return found == view_keys().end() ? nullptr : &*found;
}

}  // namespace kiv::db
