#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "fleet/fleet_answer.h"

namespace kiv::fleet {
namespace {

using report::column_kind;
using program_and_name = std::pair<std::string, std::string>;

std::string view_of(report::group_key by) { return "fleet_by_" + std::string(name_of(by)); }
std::string column_of(report::measure of) { return std::string(name_of(of)) + "_bytes"; }

std::uint64_t number_of(const store::row_cursor& row, int column) {
  return static_cast<std::uint64_t>(row.integer(column));
}

// Hands over run, program, name and bytes of these runs, a name of a run once.
bool each_sum(store::run_source& source, const std::set<std::int64_t>& orders, report::group_key by,
              report::measure of, std::string& error,
              const std::function<void(std::int64_t, program_and_name, std::uint64_t)>& visit) {
  constexpr std::size_t most_at_once = 2000;  // statements are bounded
  for (auto next = orders.begin(); next != orders.end();) {
    std::string list;
    for (std::size_t i = 0; i < most_at_once && next != orders.end(); ++i, ++next) {
      list += (list.empty() ? "" : ", ") + std::to_string(*next);
    }
    const bool done = each_row(
        source,
        fmt::format("SELECT import_order, program, name, SUM({0}) AS total FROM {1} WHERE {0} <> 0 "
                    "AND import_order IN ({2}) GROUP BY import_order, program, name",
                    column_of(of), view_of(by), list),
        {}, error, [&](const store::row_cursor& row) {
          visit(row.integer(0), {std::string(row.text(1)), std::string(row.text(2))},
                number_of(row, 3));
        });
    if (!done) return false;
  }
  return true;
}

struct first_leak {
  std::int64_t first = 0, last = 0;
  std::uint64_t runs = 0, leaked = 0;
};

struct grown_name {
  const program_and_name* name;
  std::uint64_t first, last;
  std::int64_t first_run, last_run;
};

// The last runs of each program that has so many, oldest first.
std::map<std::string, std::vector<std::int64_t>> last_runs(const fleet_runs& runs,
                                                           std::size_t count) {
  std::map<std::string, std::vector<std::int64_t>> last;
  for (const auto& part : runs.of_all_hosts()) last[part.program].push_back(part.order);
  std::erase_if(last, [&](const auto& program) { return program.second.size() < count; });
  for (auto& [program, orders] : last) {
    orders.erase(orders.begin(), orders.end() - static_cast<std::ptrdiff_t>(count));
  }
  return last;
}

}  // namespace

std::optional<fleet_answer> peaks_of(store::run_source& source, const fleet_options& options,
                                     std::string& error) {
  const std::string title(title_of(options.by));
  fleet_answer answer{question::peaks,
                      "What all runs together held at their peaks, by " + title,
                      {{"program", "program"},
                       {"runs", "in runs", column_kind::count},
                       {"peak_bytes", "at the peaks", column_kind::bytes},
                       {"name", title}},
                      {}};
  std::vector<std::tuple<std::uint64_t, std::uint64_t, program_and_name>> found;
  const bool done = each_row(
      source,
      fmt::format("SELECT program, name, SUM(peak_bytes) AS total, COUNT(DISTINCT import_order) AS "
                  "runs FROM {} WHERE peak_bytes <> 0 GROUP BY program, name",
                  view_of(options.by)),
      {}, error, [&](const store::row_cursor& row) {
        found.emplace_back(number_of(row, 2), number_of(row, 3),
                           program_and_name(row.text(0), row.text(1)));
      });
  if (!done) return std::nullopt;
  std::ranges::sort(found, [](const auto& a, const auto& b) {
    if (std::get<0>(a) != std::get<0>(b)) return std::get<0>(a) > std::get<0>(b);
    return std::get<2>(a) < std::get<2>(b);
  });
  for (const auto& [bytes, runs, name] : found) {
    answer.rows.push_back({name.first, runs, bytes, name.second});
  }
  return answer;
}

std::optional<fleet_answer> first_leaks_of(store::run_source& source, const fleet_runs& runs,
                                           const fleet_options& options, std::string& error) {
  const std::string title(title_of(options.by));
  fleet_answer answer{
      question::first_leaks,
      fmt::format("The first run in which a {} leaked more than {} bytes, latest first", title,
                  options.leaked_above),
      {{"program", "program"},
       {"release", "release"},
       {"run", "first run"},
       {"leaked_bytes", "leaked there", column_kind::bytes},
       {"runs", "in runs", column_kind::count},
       {"last_run", "last run"},
       {"name", title}},
      {}};
  std::map<program_and_name, first_leak> found;
  std::set<std::int64_t> firsts;
  bool done = each_row(
      source,
      fmt::format(
          "SELECT program, name, MIN(import_order) AS first_order, MAX(import_order) AS "
          "last_order, "
          "COUNT(*) AS runs FROM (SELECT import_order, program, name, SUM(leaked_bytes) AS leaked "
          "FROM {} WHERE leaked_bytes <> 0 GROUP BY import_order, program, name) WHERE leaked > {} "
          "GROUP BY program, name",
          view_of(options.by), options.leaked_above),
      {}, error, [&](const store::row_cursor& row) {
        const first_leak leak{row.integer(2), row.integer(3), number_of(row, 4)};
        if (!runs.runs().contains(leak.first) || !runs.runs().contains(leak.last)) return;
        found.emplace(program_and_name(row.text(0), row.text(1)), leak);
        firsts.insert(leak.first);
      });
  done =
      done && each_sum(source, firsts, options.by, report::measure::leaked, error,
                       [&](std::int64_t order, const program_and_name& name, std::uint64_t bytes) {
                         const auto leak = found.find(name);
                         if (leak == found.end() || leak->second.first != order) return;
                         leak->second.leaked = bytes;
                       });
  if (!done) return std::nullopt;
  std::vector<std::pair<program_and_name, first_leak>> sorted(found.begin(), found.end());
  std::ranges::stable_sort(sorted, [](const auto& a, const auto& b) {
    return std::pair(a.second.first, a.second.leaked) > std::pair(b.second.first, b.second.leaked);
  });
  for (const auto& [name, leak] : sorted) {
    const fleet_run& first = runs.runs().at(leak.first);
    answer.rows.push_back({name.first, first.release, first.name, leak.leaked, leak.runs,
                           runs.runs().at(leak.last).name, name.second});
  }
  return answer;
}

std::optional<fleet_answer> growth_of(store::run_source& source, const fleet_runs& runs,
                                      const fleet_options& options, std::string& error) {
  const std::string title(title_of(options.by));
  fleet_answer answer{
      question::growth,
      fmt::format("What grew at every step of the last {} runs of its program: {}, by {}",
                  options.runs, title_of(options.of), title),
      {{"program", "program"},
       {"first_run", "from run"},
       {"last_run", "to run"},
       {"first_bytes", "first", column_kind::bytes},
       {"last_bytes", "last", column_kind::bytes},
       {"change", "change", column_kind::change},
       {"name", title}},
      {}};
  const auto last = last_runs(runs, options.runs);
  std::set<std::int64_t> orders;
  for (const auto& [program, of_program] : last)
    orders.insert(of_program.begin(), of_program.end());
  std::map<program_and_name, std::map<std::int64_t, std::uint64_t>> bytes_of;
  const bool done =
      each_sum(source, orders, options.by, options.of, error,
               [&](std::int64_t order, program_and_name name, std::uint64_t bytes) {
                 const auto program = last.find(name.first);
                 if (program == last.end() || !std::ranges::binary_search(program->second, order))
                   return;
                 bytes_of[std::move(name)][order] = bytes;
               });
  if (!done) return std::nullopt;
  std::vector<grown_name> grown;
  for (const auto& [name, bytes] : bytes_of) {
    // Where a name is not in a run, it held nothing there; so only the first may lack it.
    const auto& wanted = last.at(name.first);
    if (bytes.size() + 1 < wanted.size()) continue;
    std::vector<std::uint64_t> steps;
    for (const auto order : wanted) {
      const auto at = bytes.find(order);
      steps.push_back(at == bytes.end() ? 0 : at->second);
    }
    const bool always = std::ranges::adjacent_find(steps, std::greater_equal()) == steps.end();
    if (always) {
      grown.push_back({&name, steps.front(), steps.back(), wanted.front(), wanted.back()});
    }
  }
  std::ranges::stable_sort(grown, std::greater(),
                           [](const grown_name& g) { return g.last - g.first; });
  for (const auto& g : grown) {
    answer.rows.push_back({g.name->first, runs.runs().at(g.first_run).name,
                           runs.runs().at(g.last_run).name, g.first, g.last,
                           static_cast<std::int64_t>(g.last - g.first), g.name->second});
  }
  return answer;
}

}  // namespace kiv::fleet
