#include "kiv/kiv_main.h"
#include "util/large_pages.h"

int main(int argc, char** argv) {
  kiv::prefer_large_pages_for_heap();
  kiv::set_up_process();
  return kiv::kiv_main(argc, argv);
}
