#pragma once

#include <cstddef>
#include <string>

#include "profile/run_profile.h"
#include "store/run_source.h"

namespace kiv::test {

// How large a fleet is. A trace has lines * paths groups of blocks.
struct fleet_shape {
  std::size_t runs = 60;
  std::size_t lines = 12, paths = 3, hosts = 11;
};

struct generated_run {
  run_profile profile;
  store::run_labels labels;
};

// What is planted in every fleet, among figures that vary by chance:
// - `leaking_line` of `programs[0]` leaks a little in every run, and `leak` bytes and more in each
//   from the first run of `leaking_release` on.
// - `growing_line` of `programs[1]` leaks more in every run than in the one before.
// - `greedy_host` holds three times as much as the others.
// - Every `freak_every`th run holds and leaks ten times as much.
// - Every `nameless_every`th run has no release.
inline const std::string programs[] = {"server", "worker", "batch \"nightly\"\n"};
inline const std::string leaking_line = "cache.c:88", growing_line = "queue.c:12";
inline const std::string leaking_release = "10.0", greedy_host = "host3";
inline constexpr std::uint64_t leak = 100'000;
inline constexpr std::size_t freak_every = 41, nameless_every = 23;

// The n-th run of a fleet, always the same one. Releases follow each other, programs and hosts
// take turns.
generated_run generate_run(const fleet_shape& shape, std::size_t n);

}  // namespace kiv::test
