#include "driver/terminate.h"

#include <cstdlib>
#include <iostream>

#include "output/csv_filebuf.h"

namespace kiv {

void kiv_terminate_handler() {
  std::cout.flush();
  csv_filebuf::flush_all();
  std::cerr << "Some error occurred: debug and break at kiv_terminate_handler" << std::endl;
  std::abort();
}

}  // namespace kiv
