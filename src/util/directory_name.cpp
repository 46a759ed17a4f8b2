#include "util/directory_name.h"

#include <filesystem>
#include <system_error>

namespace kiv {

std::string directory_name(const std::string& path) {
  std::error_code unknown;
  const std::filesystem::path whole = std::filesystem::absolute(path, unknown).lexically_normal();
  return (whole.has_filename() ? whole.filename() : whole.parent_path().filename()).string();
}

}  // namespace kiv
