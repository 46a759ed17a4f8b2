#include "store/run_target.h"

#include <algorithm>
#include <set>
#include <utility>

#include "util/printable.h"

namespace kiv::store {

std::string duplicate_of(const run_profile& run) {
  std::set<std::pair<std::string_view, std::int64_t>> seen;
  for (const auto& trace : run.traces) {
    if (seen.emplace(trace.run, trace.pid).second) continue;
    return "two traces of the run " + quoted_name(trace.run) + " with the process id " +
           std::to_string(trace.pid) + "; is one trace named twice?";
  }
  return {};
}

std::string why_incomplete(const run_profile& run) {
  for (const auto& trace : run.traces) {
    if (trace.complete()) continue;
    const std::string reason = trace.from_rows
                                   ? "it is known from its CSV tables alone"
                                   : "it lacks something: " + printable(trace.losses.front().what);
    return "a complete run " + quoted_name(run.name) +
           " is stored, and this one cannot replace it: " + reason;
  }
  return {};
}

}  // namespace kiv::store
