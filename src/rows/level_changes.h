#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "profile/profile.h"

namespace kiv::rows {

// Says at which ids live memory differs from what it was when asked before.
class level_changes {
 public:
  void touch(std::uint32_t id);
  // Given the present levels of all ids.
  std::vector<id_level> take(const std::vector<std::uint64_t>& levels);

 private:
  std::vector<std::uint64_t> before_;
  std::vector<bool> touched_;
  std::vector<std::uint32_t> ids_;  // touched since
};

// Live memory over time in at most 1,000 steps: when there are as many, two become one.
class timeline_builder {
 public:
  static constexpr std::size_t max_steps = 1'000;

  void touch(std::uint32_t id) { changes_.touch(id); }
  // After a record. `levels` has the live memory of every id.
  void add_record(std::uint64_t record, std::string_view time, std::uint64_t live_bytes,
                  std::uint64_t heap_bytes, const std::vector<std::uint64_t>& levels);
  std::vector<timeline_step> finish(const std::vector<std::uint64_t>& levels);

 private:
  void end_step(const std::vector<std::uint64_t>& levels);
  void halve();

  level_changes changes_;
  std::vector<timeline_step> steps_;
  timeline_step now_;
  std::uint64_t width_ = 1, records_ = 0;  // of a step, in the present one
};

}  // namespace kiv::rows
