#include "kivdb/messages.h"

#include <algorithm>
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

std::string without_passwords(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const auto end = std::min(text.find_first_of(" \n"), text.size());
    shown += clickhouse::without_password(text.substr(0, end));
    if (end < text.size()) shown += text[end];
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return shown;
}

int finish_output() {
  return std::cout.flush() ? status_done : complain("the output could not be written whole");
}

}  // namespace kiv::db
