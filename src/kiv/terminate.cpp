#include "kiv/terminate.h"

#include <cstdlib>
#include <iostream>

#include "tables/csv_filebuf.h"

namespace kiv {

namespace {

// Handlers take no arguments, so the one place that they look at is here.
open_files* files_to_save = nullptr;

}  // namespace

saved_on_termination::saved_on_termination(open_files& files) { files_to_save = &files; }

saved_on_termination::~saved_on_termination() { files_to_save = nullptr; }

void kiv_terminate_handler() {
  std::cout.flush();
  if (files_to_save != nullptr) files_to_save->flush_all();
  std::cerr << "Some error occurred: debug and break at kiv_terminate_handler" << std::endl;
  std::abort();
}

}  // namespace kiv
