#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "export/run_export.h"
#include "report/name_book.h"

namespace kiv::exports {

// The call paths of an export as stacks of frames, outermost first. Frames that read alike are one,
// and so are stacks of the same frames.
class stack_tree {
 public:
  // How a name is written as a frame.
  using frame_text = std::string (*)(std::string_view name);

  stack_tree(const run_export& what, frame_text text);

  // The stack of a group of blocks: its call path, or "(no call path)" as the only function; with
  // `ids`, below its allocation id and colour.
  std::uint32_t stack_of(const report::named_trace& trace, const block_group& group);

  struct place {
    std::uint32_t stack = 0;
    std::uint32_t frame = 0;  // the innermost
    std::size_t depth = 0;    // frames around it
  };
  // All stacks, also those that only others go through, in the order of their frames' texts;
  // callers come before callees.
  std::vector<place> in_order() const;

  std::size_t size() const { return stacks_.size(); }
  const std::string& frame(std::uint32_t number) const { return frames_[number]; }
  // The place of each frame when all are sorted by their texts.
  std::vector<std::uint32_t> ranks_of_frames() const;
  // Outermost first.
  std::vector<std::uint32_t> frames_of(std::uint32_t stack) const;

 private:
  static constexpr std::uint32_t none = UINT32_MAX;

  std::uint32_t child(std::uint32_t stack, std::uint32_t frame) {
    return stacks_.add({stack, frame});
  }
  std::uint32_t frame_number(std::string_view name) { return frames_.add(text_(name)); }
  std::uint32_t function_frame(std::uint32_t function);
  std::uint32_t below(std::uint32_t outer, std::uint32_t path);

  const run_export& what_;
  frame_text text_;
  report::text_pool frames_;
  report::pair_pool stacks_;                    // the stack around, innermost frame; 0: no frame
  report::pair_pool known_;                     // outer stack, call path
  std::vector<std::uint32_t> stacks_of_known_;  // by number of the pair
  std::vector<std::uint32_t> function_frames_;  // by number of the function in the name book
};

}  // namespace kiv::exports
