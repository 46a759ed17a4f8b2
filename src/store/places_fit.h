#pragma once

#include "profile/profile.h"

namespace kiv::store {

// Whether a profile that was read is one: it is blank, or every place in it leads to an entry, and
// parents come before their children.
bool places_fit(const profile& p);

}  // namespace kiv::store
