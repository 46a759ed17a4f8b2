#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "profile/profile.h"

namespace kiv::clickhouse {

// A call path as text, by the rules of SQLite's view `paths`.
struct path_text {
  std::string text;
  std::int64_t depth = 0;
  std::int64_t order = 0;  // in that view: level by level
};

std::vector<path_text> path_texts(const profile& p);

// "object:name", or the name alone when there is no object.
std::string function_text(const profile_function& f);

}  // namespace kiv::clickhouse
