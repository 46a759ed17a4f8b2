#pragma once

namespace kiv {

// Prints name, version and platform on the error stream, between two lines of dashes.
void print_version();

}  // namespace kiv
