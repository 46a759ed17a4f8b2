#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "profile/profile.h"

namespace kiv {

struct Func_loc;
class Func_rel;
class KivProcess;
class kiv_reader;

// The call tree of a trace: call stacks -> short numbers, places of the profile's list of paths.
// What is known of a stack is kept in its entries, so that only those entered since are looked at.
class call_paths {
 public:
  explicit call_paths(const kiv_reader& reader);

  // The path that a process stands in now.
  std::uint32_t current(const KivProcess& process);

  // How many calls were left out of paths since the tree was full.
  std::uint64_t calls_left_out() const { return calls_left_out_; }

  // Hands over the lists.
  void finish(profile& into);

 private:
  // Paths that end in the same caller form a list as far as it is short; the others are looked up.
  struct node {
    std::uint32_t parent = 0, function = 0;
    std::uint32_t first_child = 0, next = 0;  // 0: none
    std::uint32_t followed = 0;               // children in the list
  };
  static constexpr std::uint32_t max_followed = 8;

  std::uint32_t step_into(std::uint32_t parent, const Func_rel& function);
  std::uint32_t find_or_add(std::uint32_t parent, std::uint32_t function);
  std::uint32_t add(std::uint32_t parent, std::uint32_t function);
  std::uint32_t number_function(const Func_rel& function);
  std::uint32_t find_or_add_function(const Func_loc* location);

  static constexpr std::size_t max_paths = 1'000'000;

  const kiv_reader& reader_;
  std::vector<node> nodes_{1};  // by path
  absl::flat_hash_map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> index_;
  std::vector<profile_function> functions_;
  absl::flat_hash_map<std::pair<std::string, std::string>, std::uint32_t> function_index_;
  std::uint64_t calls_left_out_ = 0;
};

}  // namespace kiv
