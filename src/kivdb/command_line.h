#pragma once

namespace kiv::db {

// The program kivdb; gives its exit status.
int kivdb_main(int argc, char** argv);

}  // namespace kiv::db
