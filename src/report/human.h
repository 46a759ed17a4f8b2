#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kiv::report {

// "1,234,567"
std::string grouped(std::uint64_t number);
std::string grouped(std::int64_t number);

// "1.2 MiB"; below 1024 exactly, "512 B".
std::string human_bytes(std::uint64_t bytes);
std::string human_bytes(std::int64_t bytes);

// The same with a sign: "+1.2 MiB", "-512 B"; "0 B" without one.
std::string human_change(std::int64_t bytes);

// "62.9 %"; "-" when there is no whole, "<0.1 %" for a part that would round to nothing.
std::string human_share(std::uint64_t part, std::uint64_t whole);

// "1h 02m 03.450s", "2m 03.450s" or "3.450s"
std::string human_duration(std::int64_t milliseconds);

// Milliseconds between two times like "2023-11-14 22:13:20.005"; nothing when one is none.
std::optional<std::int64_t> milliseconds_between(std::string_view start, std::string_view end);

}  // namespace kiv::report
