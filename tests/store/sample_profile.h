#pragma once

#include <cstdint>
#include <string>

#include "profile/run_profile.h"

namespace kiv::test {

// A profile in which every list has entries, every number is another one, and names hold quotes,
// line ends and bytes that are no text. With `scale`, it has so many times as many groups.
profile rich_profile(const std::string& run, std::int64_t pid, std::size_t scale = 1);

// A complete run of one small trace in which id "cache" leaks so many bytes.
run_profile small_run(const std::string& name, std::uint64_t leaked);

// Everything in a profile as text, to compare by.
std::string to_text(const profile& p);

}  // namespace kiv::test
