#pragma once

#include <string>

namespace kiv {

// The last part of a directory's path, also of "." and of one that ends with a slash. Empty for the
// root, and when the working directory is not known.
std::string directory_name(const std::string& path);

}  // namespace kiv
