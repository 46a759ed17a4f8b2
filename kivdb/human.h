#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kiv::db {

// "1,234,567"
std::string grouped(std::int64_t number);

// "1.2 MiB"; below 1024 exactly, "512 B".
std::string human_bytes(std::int64_t bytes);

// "1h 02m 03.450s", "2m 03.450s" or "3.450s"
std::string human_duration(std::int64_t milliseconds);

// Milliseconds between two times like "2023-11-14 22:13:20.005"; nothing when one is none.
std::optional<std::int64_t> milliseconds_between(std::string_view start, std::string_view end);

// A limit as the user writes it: bytes with an optional K, M or G (times 1024), or a percentage.
struct growth_limit {
  double value;
  bool percent;
};
std::optional<growth_limit> parse_limit(std::string_view text);

}  // namespace kiv::db
