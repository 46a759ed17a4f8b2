#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "convert/recorded_code.h"
#include "convert/recorded_stacks.h"
#include "convert/recording_head.h"
#include "convert/recording_lines.h"

namespace kiv::convert {

// Something that happened in the recorded program.
struct recorded_event {
  enum class kind {
    allocation,       // `value`: the number of its size and stack
    release,          // the same of the block that ended
    time,             // milliseconds since the program's start
    resident_memory,  // bytes
    attached,         // the recorder came to a program that ran already
  };
  kind what;
  std::uint64_t value = 0;
};

// Lines that could not be used: how many, and where the first of them stands.
struct recording_faults {
  std::uint64_t count = 0;
  std::uint64_t first_line = 0;
  void add(std::uint64_t line) {
    if (count++ == 0 || line < first_line) first_line = line;
  }
};

// Reads an interpreted recording of heaptrack, of the file formats 1 to 3: lines of which the first
// letter says what they hold. It is read twice: code, stacks and sizes first, since a trace
// announces functions before it uses their object, then the events one by one.
class heaptrack_recording {
 public:
  explicit heaptrack_recording(recording_source source)
      : source_(std::move(source)), stacks_(code_) {}

  // Reads code, stacks and sizes. False, with the reason in words, when the file is no such
  // recording.
  bool open(std::string& refusal);

  // False at the end of what can be read.
  bool next(recorded_event& event) {
    std::string_view line;
    while (lines_->next(line)) {
      if (read_event(line, event)) return true;
    }
    return false;
  }

  // Whether the recorder got to its end, and why not.
  bool complete() const { return end_seen_ && lines_->fault().empty(); }
  std::string fault() const;

  // Sizes and stacks of allocations, numbered from 0.
  struct allocation {
    std::uint64_t size = 0;
    std::uint64_t stack = 0;  // of stacks(); 0 when not known
  };
  // Larger ones are taken for damage.
  static constexpr std::uint64_t max_size = std::uint64_t{1} << 38;
  const allocation& allocation_at(std::uint64_t index) const { return allocations_[index]; }
  std::uint64_t allocations() const { return allocations_.size(); }

  const recorded_code& code() const { return code_; }
  const recorded_stacks& stacks() const { return stacks_; }
  const recording_head& head() const { return head_; }
  std::uint64_t line() const { return lines_->number(); }
  std::uint64_t bytes_taken() const { return lines_->bytes().taken(); }  // of the second reading
  const recording_faults& unreadable() const { return unreadable_; }

 private:
  bool start_reading(std::string& error);
  bool is_full() const;
  void read_code(std::string_view line);
  void read_string(std::string_view line);
  void read_instruction(std::string_view line);
  void read_stack(std::string_view line);
  void read_allocation(std::string_view line);
  // True when the line holds an event.
  bool read_event(std::string_view line, recorded_event& event);
  bool read_event(recorded_event::kind what, std::uint64_t limit, std::string_view line,
                  recorded_event& event);

  recording_source source_;
  std::optional<recording_lines> lines_;
  recording_head head_;
  recorded_code code_;
  recorded_stacks stacks_;
  std::vector<allocation> allocations_;
  std::uint64_t string_bytes_ = 0;
  std::vector<recorded_code::frame> frames_;  // of the instruction that is read
  bool end_seen_ = false;
  recording_faults unreadable_;
};

}  // namespace kiv::convert
