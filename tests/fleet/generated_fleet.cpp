#include "generated_fleet.h"

#include <algorithm>

namespace kiv::test {
namespace {

const char* const releases[] = {"9.8", "9.9", "10.0", "10.1", "10.2"};

// The same numbers on every machine.
class chance {
 public:
  explicit chance(std::uint64_t seed) : state_(seed * 0x9e3779b97f4a7c15u + 1) {}
  std::uint64_t below(std::uint64_t limit) {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return state_ % limit;
  }

 private:
  std::uint64_t state_;
};

// What a run has by its place in the fleet.
struct place_in_fleet {
  std::size_t program, host, release;
  bool freak, nameless;
  std::uint64_t times;  // as much memory as others
};

place_in_fleet place_of(const fleet_shape& shape, std::size_t n) {
  place_in_fleet place{n % std::size(programs),
                       n * 7 % shape.hosts,
                       std::min(n * std::size(releases) / shape.runs, std::size(releases) - 1),
                       n % freak_every == freak_every - 1,
                       n % nameless_every == nameless_every - 1,
                       1};
  if ("host" + std::to_string(place.host) == greedy_host) place.times *= 3;
  if (place.freak) place.times *= 10;
  return place;
}

void add_names(profile& p, const fleet_shape& shape) {
  p.ids = {{0, "unknown id", ""}};
  p.colors = {{0, 0, "unknown colour"}};
  for (std::uint32_t i = 1; i <= 5; ++i) {
    p.ids.push_back({i, "oic part " + std::to_string(i), "oic"});
    p.colors.push_back({i, 1, "colour " + std::to_string(i)});
  }
  p.lines = {"unknown line", leaking_line, growing_line};
  while (p.lines.size() < shape.lines + 1) {
    p.lines.push_back("file" + std::to_string(p.lines.size()) + ".c:7");
  }
  p.functions = {{"", "unknown"}};
  p.paths = {{0, 0}};
  for (std::uint32_t i = 1; i <= shape.paths; ++i) {
    p.functions.push_back({"lib", "function" + std::to_string(i)});
    p.paths.push_back({i / 2, i});
  }
  p.processes = {{0, "default process"}, {7, "session"}};
  p.queries = {"(no finished SQL operation)", "SELECT 1"};
}

// What a line leaks on one of its paths.
std::uint64_t leaked_on(const place_in_fleet& place, std::size_t n, const profile& p,
                        const std::string& line, std::uint32_t path, chance& random) {
  if (line == leaking_line) {
    const bool since = releases[place.release] == leaking_release || place.release > 2;
    return place.program == 0 && path == 1 ? (since ? leak + random.below(1000) : 10) : 0;
  }
  if (line == growing_line) {
    return place.program == 1 && path == 1 && p.pid == 1 ? 500 + n : 0;
  }
  return random.below(20) == 0 ? (1 + random.below(300)) * place.times : 0;
}

profile generate_trace(const fleet_shape& shape, std::size_t n, std::int64_t pid) {
  const place_in_fleet place = place_of(shape, n);
  chance random(n * 2 + static_cast<std::uint64_t>(pid));
  profile p;
  p.run = "run" + std::to_string(n);
  p.pid = pid;
  p.program = programs[place.program];
  p.host = "host" + std::to_string(place.host);
  p.start = "2023-11-14 22:13:20.005";
  p.end = "2023-11-14 22:14:20.005";
  add_names(p, shape);
  for (std::uint32_t line = 1; line <= shape.lines; ++line) {
    for (std::uint32_t path = 1; path <= shape.paths; ++path) {
      block_group g;
      g.id = g.color = 1 + line % 5;
      g.line = line;
      g.path = path;
      g.process = path % 2;
      g.query = line % 2;
      g.no_free = line % 6 == 0;
      const std::uint64_t leaked = leaked_on(place, n, p, p.lines[line], path, random);
      const std::uint64_t held = (5000 + random.below(500)) * place.times;
      const bool ends = leaked % 2 == 0;
      g[ends ? figure::left_with_id : figure::live] = {leaked > 0, leaked, leaked};
      g[figure::at_peak] = {1 + random.below(9), held, held};
      g[figure::made] = {12, held + leaked, held + leaked};
      g[figure::freed] = {11, held, held};
      p.groups.push_back(g);
      p.peak.live += g[figure::at_peak];
    }
  }
  p.records = 24 * shape.lines * shape.paths;
  p.peak.record = p.records / 2;
  p.peak.time = p.start;
  return p;
}

}  // namespace

generated_run generate_run(const fleet_shape& shape, std::size_t n) {
  const place_in_fleet place = place_of(shape, n);
  generated_run made{{"run" + std::to_string(n), {generate_trace(shape, n, 1)}}, {}};
  // Some runs have a second process, and some lack something.
  if (n % 5 == 4) made.profile.traces.push_back(generate_trace(shape, n, 2));
  if (n % 19 == 18) made.profile.traces.back().losses = {{"cut data file", 1, ""}};
  if (!place.nameless) made.labels.emplace_back("release", releases[place.release]);
  made.labels.emplace_back("half", n % 2 == 0 ? "even" : "odd");
  return made;
}

}  // namespace kiv::test
