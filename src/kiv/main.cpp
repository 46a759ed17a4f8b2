#include "kiv/kiv_main.h"

int main(int argc, char** argv) {
  kiv::set_up_process();
  return kiv::kiv_main(argc, argv);
}
