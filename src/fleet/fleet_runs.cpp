#include "fleet/fleet_runs.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace kiv::fleet {

bool each_row(store::run_source& source, const std::string& sql,
              const std::vector<std::string>& texts, std::string& error,
              const std::function<void(const store::row_cursor&)>& visit) {
  const auto rows = source.select(sql, texts, error);
  if (!rows) return false;
  while (rows->step()) visit(*rows);
  if (rows->failed()) error = rows->error();
  return !rows->failed();
}

bool fleet_runs::read(store::run_source& source, const std::string& label, std::string& error) {
  std::map<std::string, std::string, std::less<>> releases;
  const bool labelled =
      each_row(source, "SELECT run, value FROM labels WHERE key = ?", {label}, error,
               [&](const store::row_cursor& row) { releases.emplace(row.text(0), row.text(1)); });
  if (!labelled) return false;
  const bool done = each_row(
      source,
      "SELECT import_order, run, program, host, MIN(complete) AS complete_all, SUM(peak_bytes) AS "
      "peak, SUM(leaked_bytes) AS leaked FROM fleet_trace GROUP BY import_order, run, program, "
      "host",
      {}, error, [&](const store::row_cursor& row) {
        const std::int64_t order = row.integer(0);
        if (const auto [at, is_new] = runs_.try_emplace(order); is_new) {
          at->second.name = row.text(1);
          const auto release = releases.find(at->second.name);
          if (release != releases.end()) at->second.release = release->second;
        }
        parts_.push_back({order, std::string(row.text(2)), std::string(row.text(3)),
                          row.integer(4) != 0, static_cast<std::uint64_t>(row.integer(5)),
                          static_cast<std::uint64_t>(row.integer(6))});
      });
  std::ranges::sort(parts_, [](const fleet_part& a, const fleet_part& b) {
    return std::tie(a.order, a.program, a.host) < std::tie(b.order, b.program, b.host);
  });
  return done;
}

std::vector<fleet_part> fleet_runs::of_all_hosts() const {
  std::vector<fleet_part> together;
  for (const auto& part : parts_) {
    if (!together.empty() && together.back().order == part.order &&
        together.back().program == part.program) {
      fleet_part& sum = together.back();
      sum.complete = sum.complete && part.complete;
      sum.peak += part.peak;
      sum.leaked += part.leaked;
      continue;
    }
    together.push_back(part);
    together.back().host.clear();
  }
  return together;
}

}  // namespace kiv::fleet
