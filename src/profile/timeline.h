#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "profile/profile.h"
#include "util/moment.h"

namespace kiv {

// Live memory by allocation id as it changes, and which ids changed since a step or a mark.
class id_levels {
 public:
  using slot = std::uint32_t;  // an allocation id's place, from 0 without gaps

  // Adds bytes that came to life, or that ended when negative.
  void change(slot id, std::int64_t bytes);

  // The levels that changed since the last call of the same function.
  std::vector<id_level> changed_in_step() { return take(in_step_, &state::step); }
  std::vector<id_level> changed_since_mark() { return take(since_mark_, &state::mark); }
  std::size_t changed_in_step_count() const { return in_step_.size(); }

 private:
  struct state {
    std::uint64_t bytes = 0;
    bool step = false;  // stands in in_step_
    bool mark = false;
  };
  std::vector<id_level> take(std::vector<slot>& changed, bool state::*flag);

  std::vector<state> states_;
  std::vector<slot> in_step_;
  std::vector<slot> since_mark_;
};

// Live memory over a trace in a bounded number of steps: when they are too many, two become one.
class timeline {
 public:
  // A memory record is booked. `live` and `heap` in bytes, after it.
  void record(std::uint64_t number, const moment& now, std::uint64_t live, std::uint64_t heap,
              id_levels& levels) {
    current_.last_record = number;
    current_.time = now;
    current_.last_bytes = live;
    current_.heap_bytes = heap;
    if (live > current_.highest_bytes) current_.highest_bytes = live;
    if (++records_ == records_per_step_) end_step(levels);
  }

  // Ends the last step and hands all of them over, with texts for their times.
  std::vector<timeline_step> finish(id_levels& levels);

 private:
  static constexpr std::size_t max_steps = 1000;
  static constexpr std::size_t max_levels = std::size_t{256} * 1024;  // of all steps together

  struct step {
    std::uint64_t last_record = 0;
    moment time;
    std::uint64_t highest_bytes = 0;
    std::uint64_t last_bytes = 0;
    std::uint64_t heap_bytes = 0;
    std::vector<id_level> changed;
  };

  void end_step(id_levels& levels);
  void halve();
  // What changed over two steps: the later level of each id.
  void merge(const std::vector<id_level>& earlier, std::vector<id_level>& later);

  std::vector<step> steps_;
  step current_;
  std::uint64_t records_ = 0;  // in the current step
  std::uint64_t records_per_step_ = 1;
  std::size_t levels_ = 0;
  std::vector<std::uint32_t> merged_in_;  // by id: the merge that saw it last
  std::uint32_t merges_ = 0;
};

}  // namespace kiv
