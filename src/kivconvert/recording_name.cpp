#include "kivconvert/recording_name.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace kiv::convert {
namespace {

constexpr std::string_view endings[] = {".zst", ".gz", ""};

// The name without the ending of a packed file.
std::string_view unpacked_name(std::string_view name) {
  for (const std::string_view ending : endings) {
    if (name.ends_with(ending)) return name.substr(0, name.size() - ending.size());
  }
  return name;
}

}  // namespace

std::optional<std::uint32_t> pid_in_name(const std::string& path) {
  const std::string file = std::filesystem::path(path).filename().string();
  const std::string_view name = unpacked_name(file);
  const std::string_view digits = name.substr(name.rfind('.') + 1);
  std::int32_t pid = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), pid);
  if (error != std::errc() || end != digits.data() + digits.size() || pid <= 0) return {};
  return static_cast<std::uint32_t>(pid);
}

std::string raw_beside(const std::string& path) {
  for (const std::string_view ending : endings) {
    std::string raw = std::string(unpacked_name(path)) + ".raw" + std::string(ending);
    std::error_code missing;
    if (std::filesystem::is_regular_file(raw, missing)) return raw;
  }
  return {};
}

}  // namespace kiv::convert
