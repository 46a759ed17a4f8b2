#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kiv {

class diagnostics;
struct KivHashLoc;

// The book of source locations: location number -> line of source. A location keeps its first one.
class KivHashLoc_db {
 public:
  struct entry {
    std::int64_t location;
    std::string source_line;
  };

  // Refuses a number that is known already, and says so.
  void add_hashloc(const KivHashLoc& event, diagnostics& faults);

  // The text of a location, "unknown MalSrc location" for an unknown number.
  const std::string& get_hashloc(std::int64_t location) const { return text(text_index(location)); }

  // A short name of what get_hashloc() answers now; it keeps its meaning when more locations come.
  std::uint32_t text_index(std::int64_t location) const {
    const auto found = index_.find(location);
    return found == index_.end() ? unknown : found->second;
  }
  const std::string& text(std::uint32_t index) const {
    return index == unknown ? unknown_text_ : entries_[index - 1].source_line;
  }
  bool knows(std::int64_t location) const { return index_.contains(location); }

  // In ascending order of their numbers.
  std::vector<const entry*> ordered() const;

 private:
  static constexpr std::uint32_t unknown = 0;

  const std::string unknown_text_ = "unknown MalSrc location";
  std::vector<entry> entries_;                              // in order of arrival
  absl::flat_hash_map<std::int64_t, std::uint32_t> index_;  // location -> place in entries_ + 1
};

}  // namespace kiv
