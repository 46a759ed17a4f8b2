#include "kivdb/messages.h"

#include <iostream>
#include <string>

#include "clickhouse/server_url.h"
#include "report/printable.h"

namespace kiv::db {

int complain(std::string_view what, exit_status status) {
  std::cerr << "kivdb: " << printable(what) << '\n';
  return status;
}

int complain_about(std::string_view path, std::string_view what, exit_status status) {
  return complain(clickhouse::without_password(path) + ": " + std::string(what), status);
}

int finish_output() {
  return std::cout.flush() ? status_done : complain("the output could not be written whole");
}

}  // namespace kiv::db
