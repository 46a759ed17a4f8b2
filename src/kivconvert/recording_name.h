#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kiv::convert {

// The process's id in "heaptrack.<program>.<pid>.zst", whatever the ending; nothing when the name
// holds none.
std::optional<std::uint32_t> pid_in_name(const std::string& path);

// The file of the raw recording that stands beside an interpreted one: "x.raw.zst" beside "x.zst".
// Empty when there is none.
std::string raw_beside(const std::string& path);

}  // namespace kiv::convert
