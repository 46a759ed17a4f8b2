#pragma once

#include <vector>

#include "profile/run_profile.h"
#include "report/group_lists.h"

namespace kiv::report {

// A run that a page shows; all runs of a page share a name book.
struct page_run {
  const run_profile* run = nullptr;
  std::vector<named_trace> traces;
};

}  // namespace kiv::report
