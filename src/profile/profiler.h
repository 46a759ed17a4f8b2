#pragma once

#include <absl/container/flat_hash_map.h>
#include <absl/container/flat_hash_set.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "profile/block_notes.h"
#include "profile/call_paths.h"
#include "profile/group_table.h"
#include "profile/profile.h"
#include "profile/timeline.h"
#include "replay/observer.h"
#include "util/number_table.h"

namespace kiv {

class kiv_reader;

// The observer that computes the profile of a trace.
class profiler final : public replay_observer {
 public:
  // `reader` must outlive the profiler.
  explicit profiler(const kiv_reader& reader) : reader_(reader), paths_(reader) {}

  // Hands over all but the losses, once the replay is over.
  void finish(profile& into);

  void block_made(block_handle block, const memory_change& made) override;
  void block_refused(const memory_change& made) override;
  void block_resized(block_handle block, const memory_change& resized) override;
  void block_ended(block_handle block, const live_block& ended, std::uint64_t cause,
                   kiv_type by) override;
  void memory_changed(const memory_change& change) override;
  void id_gave_back(const KivMalid& id) override;
  void heap_grew(const KivSbrk& event) override;
  void heap_left_gap(const KivSbrkGap& event) override;
  void process_started(const KivProcess& process) override;
  void query_opened() override;
  void query_ended(const KivQueryEvent& bracket) override;
  void program_marker(std::string_view text) override;
  bool follows_calls() const override { return false; }

 private:
  struct bar {
    std::uint64_t blocks = 0;
    std::uint64_t bytes = 0;
  };
  // What is kept per allocation id number.
  struct id_state {
    std::uint32_t number = 0;
    // Of sizes and of lifetimes, each for with-free and for no-free memory; the first bar is of 0.
    std::array<std::vector<bar>, 4> distributions;
  };
  struct heap_key {
    bool gap;
    std::uint32_t path;
    std::uint32_t process;
    auto operator<=>(const heap_key&) const = default;
    template <class Hash>
    friend Hash AbslHashValue(Hash state, const heap_key& key) {
      return Hash::combine(std::move(state), key.gap, key.path, key.process);
    }
  };
  struct mark {
    std::uint64_t record;
    moment time;
    std::string text;
    std::uint64_t live_bytes, live_blocks;
    std::vector<id_level> changed;
  };

  group_table::handle group_of(const memory_change& made);
  // Counts a new block of a group.
  void add_block(group_table::handle group, const memory_change& made);
  std::uint32_t slot_of(std::uint32_t id);
  std::uint32_t current_process();
  void record_step(std::uint64_t record);
  void count_heap_change(bool gap, std::int64_t bytes);
  void count_in_bar(std::uint32_t slot, distribution of, bool no_free, std::uint64_t value,
                    std::uint64_t bytes);
  void close_query(std::uint64_t query);

  const kiv_reader& reader_;
  call_paths paths_;
  group_table groups_;
  block_notes notes_;
  recent_sizes recent_;
  id_levels levels_;
  timeline timeline_;
  peak_figures peak_;
  moment peak_time_;
  amount live_;

  std::vector<id_state> ids_;
  number_table<std::optional<std::uint32_t>> slots_;  // id number -> place in ids_
  std::vector<profile_process> processes_{{0, "default process"}};
  number_table<std::optional<std::uint32_t>> process_of_pid_;  // -> place in processes_
  absl::flat_hash_map<heap_key, std::pair<std::uint64_t, std::int64_t>> heap_;

  bool query_open_ = false;
  // What was made while it is open.
  std::vector<block_handle> blocks_of_query_;
  absl::flat_hash_set<group_table::handle> groups_of_query_;

  std::vector<mark> marks_;
  std::size_t mark_levels_ = 0;
  std::uint64_t marks_left_out_ = 0;
};

}  // namespace kiv
