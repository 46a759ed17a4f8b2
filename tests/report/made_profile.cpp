#include "report/made_profile.h"

#include <algorithm>

namespace kiv::test {
namespace {

// The place of the entry that `same` accepts; `fresh` becomes one when there is none.
template <class Entry, class Same>
std::uint32_t place_of(std::vector<Entry>& list, const Same& same, Entry fresh) {
  auto at = std::ranges::find_if(list, same);
  if (at == list.end()) at = list.insert(list.end(), std::move(fresh));
  return static_cast<std::uint32_t>(at - list.begin());
}

std::uint32_t place_of(std::vector<std::string>& list, const std::string& name) {
  return place_of(
      list, [&](const std::string& other) { return other == name; }, name);
}

}  // namespace

made_profile::made_profile(std::string run, std::int64_t pid) {
  trace.run = std::move(run);
  trace.pid = pid;
  trace.program = "app";
  trace.ids = {{0, "unknown id", ""}};
  trace.colors = {{0, 0, "unknown colour"}};
  trace.lines = {"unknown line"};
  trace.functions = {{"", ""}};
  trace.paths = {{0, 0}};
  trace.processes = {{0, "default process"}};
  trace.queries = {"(no finished SQL operation)"};
}

std::uint32_t made_profile::id(const std::string& name) {
  const auto number = static_cast<std::uint32_t>(trace.ids.size());
  return place_of(
      trace.ids, [&](const profile_id& other) { return other.name == name; },
      profile_id{number, name, name});
}

std::uint32_t made_profile::path(const std::vector<std::string>& functions) {
  std::uint32_t at = 0;
  for (const auto& name : functions) {
    const auto colon = name.find(':');
    const profile_function wanted{name.substr(0, colon), name.substr(colon + 1)};
    const std::uint32_t function = place_of(
        trace.functions,
        [&](const profile_function& other) {
          return other.object == wanted.object && other.name == wanted.name;
        },
        wanted);
    // From place 1: the empty path is nobody's callee.
    const auto same = [&](const call_path& other) {
      return &other != trace.paths.data() && other.parent == at && other.function == function;
    };
    at = place_of(trace.paths, same, call_path{at, function});
  }
  return at;
}

made_profile& made_profile::add(const made_at& place,
                                std::initializer_list<std::pair<figure, amount>> figures) {
  block_group group;
  group.no_free = place.no_free;
  group.id = id(place.id);
  group.color = place_of(
      trace.colors,
      [&](const profile_color& other) { return other.id == group.id && other.name == place.color; },
      profile_color{group.id, 1, place.color});
  group.line = place_of(trace.lines, place.line);
  group.path = path(place.path);
  const auto pid = static_cast<std::uint32_t>(100 + trace.processes.size());
  group.process = place_of(
      trace.processes, [&](const profile_process& other) { return other.name == place.process; },
      profile_process{pid, place.process});
  group.query = place_of(trace.queries, place.query);
  for (const auto& [which, what] : figures) group[which] += what;
  trace.groups.push_back(group);
  return *this;
}

made_profile& made_profile::leak(const made_at& place, std::uint64_t blocks, std::uint64_t bytes) {
  const amount what{blocks, bytes, bytes};
  return add(place, {{figure::made, what}, {figure::left_with_id, what}});
}

run_profile run_of(std::string name, std::vector<profile> traces) {
  return {std::move(name), std::move(traces)};
}

}  // namespace kiv::test
