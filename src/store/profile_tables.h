#pragma once

#include <string>

#include "profile/profile.h"
#include "store/sqlite.h"

namespace kiv::store {

// Writes a profile as a trace of the run with that key. The caller holds a transaction. False when
// the database failed.
bool write_profile(database& db, std::int64_t run, const profile& p);

// Reads the trace with that key. False, with `error` set, when the database failed or holds what no
// profile can hold.
bool read_profile(database& db, std::int64_t trace, profile& into, std::string& error);

}  // namespace kiv::store
