#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <string_view>
#include <tuple>
#include <vector>

#include "rows/level_changes.h"
#include "rows/trace_names.h"

namespace kiv::rows {

// A record that makes or resizes a block.
struct block_row {
  std::uint64_t record = 0;
  bool no_free = false;
  std::uint32_t id_number = 0, color = 0;
  std::int64_t location = 0;
  code_place at;
  std::uint64_t query_seq = 0;
  std::uint64_t size = 0, tot_size = 0;
};

// Keeps the live blocks of one trace and sums up its profile. Records come in their order. Its
// memory grows with the live blocks and the groups. No record costs more with more groups.
class block_books {
 public:
  explicit block_books(trace_tables& tables) : tables_(tables), p_(tables.p) {}

  void make(const block_row& row);
  // Ends the block that a record made or resized last: by f, F or Z. False when it is not live.
  bool end(std::uint64_t made_by, std::uint64_t record, char type);
  // The block has a new size, and goes on under the record's number. False when it is not live.
  bool resize(std::uint64_t made_by, const block_row& row);

  // Before anything of a record: the marks that stand between the record before and this one.
  void begin_record(std::uint64_t record);
  // After all that a record did.
  void end_record(std::uint64_t record, std::string_view time, std::uint64_t heap_bytes);

  // Puts all that is left into the profile.
  void finish();

  const amount& live() const { return live_; }

 private:
  struct live_block {
    std::uint32_t group = 0;
    std::uint64_t made_record = 0;
    std::uint64_t made_size = 0, made_tot_size = 0;
    std::uint64_t size = 0, tot_size = 0;
  };
  using group_key = std::tuple<bool, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                               std::uint32_t, std::uint32_t>;
  using bar_key = std::tuple<distribution, bool, std::uint32_t, std::int32_t>;

  std::uint32_t group_of(const block_row& row);
  void change_live(std::uint32_t group, const amount& more, const amount& less);
  void count(distribution of, const block_group& group, std::uint64_t value, std::uint64_t bytes);
  void take_mark(const row_mark& mark);

  trace_tables& tables_;
  profile& p_;
  absl::flat_hash_map<std::uint64_t, live_block> blocks_;  // by their last record
  absl::flat_hash_map<group_key, std::uint32_t> groups_;
  absl::flat_hash_map<bar_key, std::size_t> bars_;
  std::vector<std::uint64_t> peak_of_group_;  // the last peak that a group's figure was copied for
  std::uint64_t peaks_ = 0;
  amount live_;
  std::vector<std::uint64_t> level_of_id_;
  std::vector<block_group> all_groups_;
  timeline_builder timeline_;
  level_changes since_mark_;
  std::size_t next_mark_ = 0;
};

}  // namespace kiv::rows
