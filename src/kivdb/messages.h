#pragma once

#include <string>
#include <string_view>

#include "kivdb/exit_status.h"

namespace kiv::db {

// Prints a line on the error stream and gives the status back. What is not printable in it is
// replaced.
int complain(std::string_view what, exit_status status = status_input);

// The same about a file.
int complain_about(std::string_view path, std::string_view what, exit_status status = status_input);

// The text without the passwords of servers' URLs in it.
std::string without_passwords(std::string_view text);

// To be called after the last output: puts it out. Not done when it could not be written whole.
int finish_output();

}  // namespace kiv::db
