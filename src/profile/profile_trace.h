#pragma once

#include <string>

#include "profile/profile.h"

namespace kiv {

// Replays the trace of a header file into its profile. A data file that is not at its recorded path
// is looked for beside the header. Damage is no failure: it shows in the profile's losses. False,
// with `error` set, when the header cannot be read or is none of a trace that can be replayed.
bool profile_trace(const std::string& header_path, profile& into, std::string& error);

}  // namespace kiv
