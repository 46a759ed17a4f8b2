#include "kivconvert/command_line.h"
#include "util/large_pages.h"

int main(int argc, char** argv) {
  kiv::prefer_large_pages_for_heap();
  return kiv::convert::kivconvert_main(argc, argv);
}
