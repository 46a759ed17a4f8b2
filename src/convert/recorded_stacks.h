#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "convert/recorded_code.h"

namespace kiv::convert {

// The stacks of a recording, as a tree of instructions and, what a trace needs of it, as a tree of
// functions: instructions of one function, and places in it, are one node there.
class recorded_stacks {
 public:
  explicit recorded_stacks(const recorded_code& code) : code_(code) {}

  // A stack of the recording: an instruction called from another stack, 0 the empty one. False when
  // one of the indexes names nothing.
  bool add_stack(std::uint64_t instruction, std::uint64_t parent);
  // Takes the number for a stack that cannot be read.
  void add_unknown_stack() { stacks_.emplace_back(); }
  std::size_t stacks() const { return stacks_.size(); }

  // Calls beyond this depth are left out of the paths: two stacks in turn would cost as many
  // records an allocation.
  static constexpr std::uint32_t max_depth = 1024;
  // A short recording can tell of any number of paths, by stacks that share long instructions.
  static constexpr std::uint32_t max_paths = 1U << 25;
  bool left_out_calls() const { return left_out_calls_; }

  // Who allocates with a stack: its calling functions, and the place; `operator new` is left out.
  struct allocator {
    std::uint32_t path = 0;      // 0 when nothing is known
    std::uint32_t location = 0;  // in the code's numbers, 0 when not known
    std::uint32_t object = recorded_code::unknown_object;
  };
  // `index`: from 0 to stacks().
  allocator allocator_of(std::uint64_t index) const {
    return index == 0 ? allocator() : stacks_[index - 1].by;
  }

  struct path {
    std::uint32_t parent = 0;  // 0: called by nobody
    std::uint32_t function = 0;
    std::uint32_t depth = 0;  // 1 for a function called by nobody
  };
  std::size_t paths() const { return paths_.size(); }  // the empty one, 0, too
  const path& path_at(std::uint32_t index) const { return paths_[index]; }

 private:
  struct stack {
    std::uint32_t path = 0;
    allocator by;
  };
  std::uint32_t find_or_add_path(std::uint32_t parent, std::uint32_t function);

  const recorded_code& code_;
  std::vector<stack> stacks_;
  std::vector<path> paths_{1};
  absl::flat_hash_map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> path_numbers_;
  bool left_out_calls_ = false;
};

}  // namespace kiv::convert
