#include "kivdb/warn_of_losses.h"

#include <fmt/format.h>

#include "kivdb/messages.h"
#include "report/human.h"
#include "report/printable.h"

namespace kiv::db {

void warn_of_losses(const run_profile& run) {
  for (const auto& trace : run.traces) {
    for (const auto& lost : trace.losses) {
      complain(fmt::format("run {}, process {}: not complete: {} x {}{}", quoted_name(run.name),
                           trace.pid, report::grouped(lost.count), lost.what,
                           lost.first.empty() ? "" : " (first: " + lost.first + ")"));
    }
  }
}

}  // namespace kiv::db
