#pragma once

namespace kiv::db {

// What the program ends with.
enum exit_status : int {
  status_done = 0,
  status_usage = 1,         // wrong usage
  status_input = 2,         // a source, a database or the output cannot be read or written
  status_limit_passed = 3,  // something grew beyond a limit of --fail-above
  status_incomplete = 4,    // a limit was given for a run that is not complete
};

}  // namespace kiv::db
