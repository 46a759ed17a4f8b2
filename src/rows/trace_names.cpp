#include "rows/trace_names.h"

namespace kiv::rows {
namespace {

std::string id_name(const std::string& reserve_type, std::string_view category,
                    std::string_view description, std::string_view reference) {
  if (description.empty()) return reserve_type;
  std::string name = std::string(category) + ' ' + std::string(description);
  const bool numbered = category == "oic" || category == "dlock";
  if (numbered && !reference.empty()) name += ':' + std::string(reference);
  return name;
}

// The place of a name in a list; a new entry is made by `add`.
template <class Map, class Key, class Add>
std::uint32_t place_of(Map& map, const Key& key, std::size_t size, Add add) {
  const auto [found, is_new] = map.try_emplace(key, static_cast<std::uint32_t>(size));
  if (is_new) add();
  return found->second;
}

}  // namespace

trace_names::trace_names(profile& p) : p_(p) {
  p.ids = {{0, "unknown id", ""}};
  p.colors = {{0, 0, "unknown colour"}};
  p.lines = {"unknown line"};
  p.functions = {{"", ""}};
  p.paths = {{0, 0}};
  p.processes = {{0, "default process"}};
  p.queries = {"(no finished SQL operation)"};
  id_names_[p.ids[0].name] = 0;
  line_names_[p.lines[0]] = 0;
  query_texts_[p.queries[0]] = 0;
  function_names_[{"", ""}] = 0;
  color_names_[{0, p.colors[0].name}] = 0;
  processes_[0] = 0;
}

void trace_names::add_id(std::uint32_t number, const std::string& reserve_type,
                         std::string_view category, std::string_view description,
                         std::string_view reference) {
  std::string name = id_name(reserve_type, category, description, reference);
  ids_.try_emplace(number, place_of(id_names_, name, p_.ids.size(), [&] {
                     p_.ids.push_back({number, name, reserve_type});
                   }));
}

void trace_names::add_color(std::uint32_t id_number, std::uint32_t color, const std::string& name) {
  const std::uint32_t of = id(id_number);
  colors_.try_emplace(std::pair(id_number, color),
                      place_of(color_names_, std::pair(of, name), p_.colors.size(), [&] {
                        p_.colors.push_back({of, color, name});
                      }));
}

void trace_names::add_line(std::int64_t location, const std::string& text) {
  lines_.try_emplace(
      location, place_of(line_names_, text, p_.lines.size(), [&] { p_.lines.push_back(text); }));
}

void trace_names::add_process(std::uint32_t pid, const std::string& name) {
  place_of(processes_, pid, p_.processes.size(), [&] { p_.processes.push_back({pid, name}); });
}

void trace_names::add_query(std::uint64_t qid, const std::string& text) {
  queries_.try_emplace(
      qid, place_of(query_texts_, text, p_.queries.size(), [&] { p_.queries.push_back(text); }));
}

void trace_names::add_operation(std::uint64_t seq, std::uint64_t qid) {
  operations_.try_emplace(seq, qid);
}

void trace_names::add_function(std::uint32_t pid, std::uint32_t object, std::int32_t number,
                               const std::string& object_name, const std::string& name) {
  functions_.try_emplace(function_key{pid, object, number}, function_place(object_name, name));
}

std::uint32_t trace_names::function_place(const std::string& object, const std::string& name) {
  return place_of(function_names_, std::pair(object, name), p_.functions.size(), [&] {
    p_.functions.push_back({object, name});
  });
}

std::uint32_t trace_names::color(std::uint32_t id_number, std::uint32_t color) const {
  return find(colors_, std::pair(id_number, color));
}

std::uint32_t trace_names::query(std::uint64_t seq) const {
  if (seq == 0) return 0;
  const auto operation = operations_.find(seq);
  return operation == operations_.end() ? 0 : find(queries_, operation->second);
}

std::uint32_t trace_names::process(std::uint32_t pid) {
  return place_of(processes_, pid, p_.processes.size(), [&] {
    p_.processes.push_back({pid, "unknown process"});
  });
}

// A process that still ran when the trace ended has no arcs, but its functions may have names.
std::uint32_t trace_names::function_of(const code_place& at) {
  for (const std::uint32_t pid : {at.pid, 0u}) {
    const auto found = functions_.find(function_key{pid, at.object, at.function});
    if (found != functions_.end()) return found->second;
  }
  return function_place(std::to_string(at.object), std::to_string(at.function));
}

std::uint32_t trace_names::path(const code_place& at) {
  if (!at.in_function) return 0;
  const function_key key{at.pid, at.object, at.function};
  if (const auto known = paths_.find(key); known != paths_.end()) return known->second;
  const std::uint32_t function = function_of(at);
  const std::uint32_t path = place_of(path_of_function_, function, p_.paths.size(), [&] {
    p_.paths.push_back({0, function});
  });
  paths_.emplace(key, path);
  return path;
}

}  // namespace kiv::rows
