#pragma once

#include <cstdint>
#include <string_view>

#include "replay/live_block_pool.h"
#include "trace/heap_events.h"
#include "trace/kiv_type.h"

namespace kiv {

class KivMalid;
class KivProcess;
class KivQueryEvent;
struct memory_books;

// What a memory record did. Allocations, frees and resizes that found no block are told too.
struct memory_change {
  kiv_type type;
  std::uint64_t record = 0;  // the run's count of memory events with this one; 0 for a resize of a
                             // missing block, which is not counted
  std::int64_t location = 0;
  std::uint32_t id = 0;  // as the record says it; 99999999 when a free or reset names an unknown id
  std::uint32_t color = 0;
  std::int64_t addr = 0;
  std::int64_t size_change = 0;      // of live memory, by what the program asked for
  std::int64_t tot_size_change = 0;  // the same by what the allocator took
  std::uint64_t size = 0;
  std::uint64_t tot_size = 0;
  std::int64_t second_addr = 0;
  std::uint64_t linked_record = 0;  // the memory record that this one refers to
  const memory_books* books = nullptr;
};

// Learns what happens in a replay. Each function is called once the books have changed, in the
// order in which things happened. What the books say beyond the arguments is the reader's to ask.
class replay_observer {
 public:
  using block_handle = live_block_pool::handle;

  replay_observer() = default;
  replay_observer(const replay_observer&) = delete;
  replay_observer& operator=(const replay_observer&) = delete;
  virtual ~replay_observer() = default;

  // The first data file is open. / The last one is read: not told when an unknown record ended it.
  virtual void trace_began() {}
  virtual void trace_ended() {}
  virtual void time_changed() {}
  // A counted record whose number is a multiple of 1000.
  virtual void thousandth_record(std::uint32_t /*count*/) {}

  // A block is live from now on under a handle that no other live block has.
  virtual void block_made(block_handle /*block*/, const memory_change& /*made*/) {}
  // An allocation at an address that is live already: the books count it, but no block is kept.
  virtual void block_refused(const memory_change& /*made*/) {}
  virtual void block_resized(block_handle /*block*/, const memory_change& /*resized*/) {}
  // `ended` is the block as it was; its handle may be given out again. `cause`: the record.
  virtual void block_ended(block_handle /*block*/, const live_block& /*ended*/,
                           std::uint64_t /*cause*/, kiv_type /*by*/) {}
  // Every memory record, after what it did to blocks; but a free or reset of an id is told before
  // its blocks end, when the run's and the process's books are changed and the id's own are not.
  virtual void memory_changed(const memory_change& /*change*/) {}

  virtual void heap_grew(const KivSbrk& /*event*/) {}
  virtual void heap_left_gap(const KivSbrkGap& /*event*/) {}
  virtual void allocator_reported(const KivMallInfo& /*event*/) {}

  virtual void id_reserved(const KivMalid& /*id*/) {}
  // A free or reset of an id is about to be booked. / It is booked, and all its blocks have ended.
  virtual void id_gives_back(const KivMalid& /*id*/, kiv_type /*by*/) {}
  virtual void id_gave_back(const KivMalid& /*id*/) {}

  virtual void process_started(const KivProcess& /*process*/) {}
  // The process still has its arcs and symbols.
  virtual void process_ended(const KivProcess& /*process*/) {}

  // Whether the observer is told of function entries and exits one by one. Who only looks at call
  // stacks need not be: a replay without is faster.
  virtual bool follows_calls() const { return true; }
  // `depth`: entries on the call stack with the function's own; `arc`: through which it was
  // entered.
  virtual void function_entered(const KivProcess& /*process*/, std::uint32_t /*depth*/,
                                std::uint32_t /*arc*/) {}
  virtual void function_left(const KivProcess& /*process*/, std::uint32_t /*depth*/,
                             std::uint32_t /*arc*/) {}

  // A bracket opens; any open one is dropped. / The open bracket ends, its statement is known.
  virtual void query_opened() {}
  virtual void query_ended(const KivQueryEvent& /*bracket*/) {}

  virtual void program_marker(std::string_view /*text*/) {}
};

}  // namespace kiv
