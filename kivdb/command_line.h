#pragma once

namespace kiv::db {

// Exit statuses: 0 done, 1 usage, 2 input or database, 3 a limit given to `diff` was passed.
int kivdb_main(int argc, char** argv);

}  // namespace kiv::db
