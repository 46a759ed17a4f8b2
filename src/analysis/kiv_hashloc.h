#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "events/kiv_event.h"
#include "memory/object_pool.h"

namespace kiv {

// A source location: the number by which records name it, and its line of source.
class KivHashLoc final : public KivEvent {
 public:
  explicit KivHashLoc(kiv_reader* reader) : KivEvent(kiv_e_hashloc, reader) {}

  void setelems() override;
  void traceevent(std::ostream& os) const override;
  // The columns of its `hashloc` row behind run id and pid.
  void columns(csv_row& row) const { row.col(location).col(source_line); }
  std::ostream& dumpinfo(std::ostream& os) const { return dump_columns(*this, os); }

  std::int64_t location = 0;
  std::string source_line;
};

// The book of source locations: location number -> text. A location keeps its first text.
class KivHashLoc_db {
 public:
  KivHashLoc_db();

  using hashloc_ptr = object_pool<KivHashLoc>::pointer;
  // A location to be decoded, in no book yet.
  hashloc_ptr make_hashloc(kiv_reader* reader) { return pool_.make(reader); }
  // Refuses a number that is known already, with a message on the standard output.
  void add_hashloc(hashloc_ptr record);

  // The text of a location, "unknown MalSrc location" for an unknown number.
  const std::string& get_hashloc(std::int64_t location) const { return text(text_index(location)); }

  // A short name of what get_hashloc() answers now; it keeps its meaning when more locations come.
  std::uint32_t text_index(std::int64_t location) const {
    const auto entry = index_.find(location);
    return entry == index_.end() ? unknown : entry->second;
  }
  const std::string& text(std::uint32_t index) const {
    return index == unknown ? unknown_text_ : records_[index - 1]->source_line;
  }

  // One row of `hashloc` per location, in ascending order of its number. `run_columns` opens each.
  void dump_db(std::ostream& os, std::string_view run_columns) const;

 private:
  static constexpr std::uint32_t unknown = 0;

  const std::string unknown_text_;
  object_pool<KivHashLoc> pool_;
  std::vector<hashloc_ptr> records_;                        // in order of arrival
  absl::flat_hash_map<std::int64_t, std::uint32_t> index_;  // location -> place in records_ + 1
};

}  // namespace kiv
