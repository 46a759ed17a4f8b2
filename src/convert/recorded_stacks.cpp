#include "convert/recorded_stacks.h"

namespace kiv::convert {

std::uint32_t recorded_stacks::find_or_add_path(std::uint32_t parent, std::uint32_t function) {
  if (paths_[parent].depth == max_depth || paths_.size() >= max_paths) {
    left_out_calls_ = true;
    return parent;
  }
  const auto [known, is_new] =
      path_numbers_.try_emplace({parent, function}, static_cast<std::uint32_t>(paths_.size()));
  if (is_new) paths_.push_back({parent, function, paths_[parent].depth + 1});
  return known->second;
}

bool recorded_stacks::add_stack(std::uint64_t instruction, std::uint64_t parent) {
  if (instruction == 0 || instruction > code_.instructions() || parent > stacks_.size()) {
    return false;
  }
  const recorded_code::instruction& called = code_.at(instruction);
  stack made;
  made.path = parent == 0 ? 0 : stacks_[parent - 1].path;
  for (std::uint32_t i = called.functions; i-- > 0;) {
    made.path = find_or_add_path(made.path, code_.function_of(called, i));
  }
  if (called.is_operator_new && parent != 0) {
    made.by = stacks_[parent - 1].by;
  } else {
    made.by = {made.path, called.location, called.object};
  }
  stacks_.push_back(made);
  return true;
}

}  // namespace kiv::convert
