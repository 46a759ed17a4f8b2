#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "report/name_book.h"

namespace kiv::pprof {
class Profile;
}

namespace kiv::exports {

// A source line as traces name it: "file.c:12", or any other text, which is a file then.
struct source_place {
  std::string_view file;
  std::int64_t line = 0;  // 0: none
};
source_place parse_line(std::string_view text);

// The tables of texts, functions and locations that samples refer to. An entry is added
// to `piece` when it is first asked for.
class pprof_tables {
 public:
  // Every location is in the mapping with the id 1.
  pprof_tables(const report::name_book& names, pprof::Profile& piece);

  std::int64_t text(std::string_view name);
  // The location of a function; `line`, where the blocks were made in it, is a number of the name
  // book. A `function` of none is the one of blocks without a call path.
  std::uint64_t location(std::uint32_t function, std::uint32_t line);

  static constexpr std::uint32_t none = UINT32_MAX;

 private:
  std::uint64_t function(std::uint32_t number, std::int64_t file);

  const report::name_book& names_;
  pprof::Profile& piece_;
  absl::flat_hash_map<std::string, std::int64_t> texts_;
  absl::flat_hash_map<std::pair<std::uint32_t, std::int64_t>, std::uint64_t> functions_;
  absl::flat_hash_map<std::pair<std::uint32_t, std::uint32_t>, std::uint64_t> locations_;
};

}  // namespace kiv::exports
