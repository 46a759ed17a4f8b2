#pragma once

#include "profile/run_profile.h"

namespace kiv::db {

// Says on the error stream what is missing in a run, for output that has no place for it.
void warn_of_losses(const run_profile& run);

}  // namespace kiv::db
