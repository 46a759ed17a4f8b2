#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "fleet/figures_of_runs.h"
#include "fleet/fleet_answer.h"
#include "fleet/release_order.h"
#include "fleet/times.h"

namespace kiv::fleet {
namespace {

using report::column_kind;

constexpr std::uint64_t median = 50, high = 95;

using program_and_release = std::pair<std::string, std::string>;
using groups = std::map<program_and_release, figures_of_runs>;

groups groups_of(const fleet_runs& runs, const std::vector<fleet_part>& parts) {
  groups found;
  for (const auto& part : parts) {
    found[{part.program, runs.runs().at(part.order).release}].add(part.peak, part.leaked,
                                                                  part.complete);
  }
  for (auto& [key, figures] : found) figures.finish();
  return found;
}

struct host_row {
  std::string program, release, host;
  const figures_of_runs* figures;
  const figures_of_runs* all;

  double distance() const { return distance_of(figures->peak(median), all->peak(median)); }
};

struct outlier {
  const fleet_part* part;
  const char* of;
  std::uint64_t bytes, median_bytes;

  double distance() const { return distance_of(bytes, median_bytes); }
};

}  // namespace

fleet_answer summary_of(const fleet_runs& runs) {
  const release_order releases(runs);
  fleet_answer answer{question::summary,
                      "Peak and leaks by program and release",
                      {{"program", "program"},
                       {"release", "release"},
                       {"runs", "runs", column_kind::count},
                       {"incomplete", "not complete", column_kind::count},
                       {"median_peak_bytes", "median peak", column_kind::bytes},
                       {"p95_peak_bytes", "95 %", column_kind::bytes},
                       {"median_leaked_bytes", "median leaked", column_kind::bytes},
                       {"p95_leaked_bytes", "95 %", column_kind::bytes}},
                      {}};
  const groups found = groups_of(runs, runs.of_all_hosts());
  std::vector<const groups::value_type*> sorted;
  for (const auto& group : found) sorted.push_back(&group);
  std::ranges::stable_sort(sorted, [&](const auto* a, const auto* b) {
    const auto place = [&](const auto* group) { return releases.place(group->first.second); };
    if (a->first.first != b->first.first) return a->first.first < b->first.first;
    return place(a) < place(b);
  });
  for (const auto* group : sorted) {
    const auto& [key, figures] = *group;
    answer.rows.push_back({key.first, key.second, figures.runs(), figures.incomplete(),
                           figures.peak(median), figures.peak(high), figures.leaked(median),
                           figures.leaked(high)});
  }
  return answer;
}

fleet_answer hosts_of(const fleet_runs& runs) {
  fleet_answer answer{question::hosts,
                      "Hosts, those farthest off the median peak of their release first",
                      {{"program", "program"},
                       {"release", "release"},
                       {"host", "host"},
                       {"runs", "runs", column_kind::count},
                       {"median_peak_bytes", "median peak", column_kind::bytes},
                       {"all_median_peak_bytes", "of all hosts", column_kind::bytes},
                       {"", "times", column_kind::share},
                       {"median_leaked_bytes", "median leaked", column_kind::bytes},
                       {"all_median_leaked_bytes", "of all hosts", column_kind::bytes}},
                      {}};
  // A host's runs are measured by those of all hosts in the same way: by what one host held.
  const groups all = groups_of(runs, runs.parts());
  std::map<std::tuple<std::string, std::string, std::string>, figures_of_runs> by_host;
  for (const auto& part : runs.parts()) {
    const std::string& release = runs.runs().at(part.order).release;
    by_host[{part.program, release, part.host}].add(part.peak, part.leaked, part.complete);
  }
  std::vector<host_row> rows;
  for (auto& [key, figures] : by_host) {
    figures.finish();
    const auto& [program, release, host] = key;
    rows.push_back({program, release, host, &figures, &all.at({program, release})});
  }
  std::ranges::stable_sort(rows, std::greater(), &host_row::distance);
  for (const auto& row : rows) {
    const std::uint64_t peak = row.figures->peak(median), all_peak = row.all->peak(median);
    answer.rows.push_back({row.program, row.release, row.host, row.figures->runs(), peak, all_peak,
                           times_text(peak, all_peak), row.figures->leaked(median),
                           row.all->leaked(median)});
  }
  return answer;
}

fleet_answer outliers_of(const fleet_runs& runs, const fleet_options& options) {
  fleet_answer answer{
      question::outliers,
      "Runs beyond " + text_of(options.beyond) + " times the median of their program and release",
      {{"program", "program"},
       {"release", "release"},
       {"run", "run"},
       {"of", "of"},
       {"bytes", "bytes", column_kind::bytes},
       {"median_bytes", "median", column_kind::bytes},
       {"", "times", column_kind::share}},
      {}};
  const auto parts = runs.of_all_hosts();
  const groups found = groups_of(runs, parts);
  std::vector<outlier> outliers;
  for (const auto& part : parts) {
    const figures_of_runs& group = found.at({part.program, runs.runs().at(part.order).release});
    const std::uint64_t peak = group.peak(median), leaked = group.leaked(median);
    if (part.peak > options.beyond.limit(peak)) {
      outliers.push_back({&part, "peak", part.peak, peak});
    }
    if (part.leaked > options.beyond.limit(leaked)) {
      outliers.push_back({&part, "leaked", part.leaked, leaked});
    }
  }
  std::ranges::stable_sort(outliers, [](const outlier& a, const outlier& b) {
    return std::pair(a.distance(), a.bytes) > std::pair(b.distance(), b.bytes);
  });
  for (const auto& found_run : outliers) {
    const fleet_run& run = runs.runs().at(found_run.part->order);
    answer.rows.push_back({found_run.part->program, run.release, run.name,
                           std::string(found_run.of), found_run.bytes, found_run.median_bytes,
                           times_text(found_run.bytes, found_run.median_bytes)});
  }
  return answer;
}

}  // namespace kiv::fleet
