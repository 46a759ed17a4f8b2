#pragma once

#include <memory>
#include <string>

#include "store/run_source.h"
#include "store/run_target.h"

namespace kiv::db {

// Opens what a user wrote as the place of stored runs: the path of a database file, or the URL
// of a server. Null, with `error` set, when it cannot be opened; the error does not name the place.
std::unique_ptr<store::run_source> open_runs(const std::string& source, std::string& error);

// What is to be done where runs are stored.
enum class target_use {
  import,  // what is not there is made
  forget,  // it must be there
};

// The same for changing what is stored.
std::unique_ptr<store::run_target> open_target(const std::string& target, target_use use,
                                               std::string& error);

}  // namespace kiv::db
