#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "profile/run_profile.h"

namespace kiv::test {

// The place that made some blocks. Functions are "object:name", outermost first.
struct made_at {
  std::string line = "a.c:1";
  std::vector<std::string> path = {"app:main"};
  std::string id = "oic core";
  std::string color = "small";
  std::string process = "server";
  std::string query = "(no finished SQL operation)";
  bool no_free = false;
};

// Builds a profile group by group, with lists of names as a profile has them.
class made_profile {
 public:
  explicit made_profile(std::string run = "R1", std::int64_t pid = 77);

  made_profile& add(const made_at& place, std::initializer_list<std::pair<figure, amount>> figures);
  // So many blocks of a size, made and then leaked (given back with their id).
  made_profile& leak(const made_at& place, std::uint64_t blocks, std::uint64_t bytes);

  profile trace;  // to be changed as a test needs it

 private:
  std::uint32_t id(const std::string& name);
  std::uint32_t path(const std::vector<std::string>& functions);
};

// A run of these traces.
run_profile run_of(std::string name, std::vector<profile> traces);

}  // namespace kiv::test
