#include "kivdb/command_line.h"

int main(int argc, char** argv) { return kiv::db::kivdb_main(argc, argv); }
