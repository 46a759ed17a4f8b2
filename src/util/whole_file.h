#pragma once

#include <functional>
#include <iosfwd>
#include <string>

namespace kiv {

// Writes a file, or replaces it, whole or not at all: what was there stays until all is written.
// Links are followed; what is no regular file, such as a pipe, is written to as it is. False, with
// `error` set, when that fails.
bool write_whole_file(const std::string& path, const std::function<void(std::ostream&)>& write,
                      std::string& error);

}  // namespace kiv
