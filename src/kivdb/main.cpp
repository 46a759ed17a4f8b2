#include "kivdb/command_line.h"
#include "util/large_pages.h"

int main(int argc, char** argv) {
  kiv::prefer_large_pages_for_heap();
  return kiv::db::kivdb_main(argc, argv);
}
