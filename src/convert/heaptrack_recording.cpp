#include "convert/heaptrack_recording.h"

namespace kiv::convert {
namespace {

constexpr std::uint64_t longest_run = std::uint64_t{1} << 40;    // milliseconds
constexpr std::uint64_t most_resident = std::uint64_t{1} << 48;  // bytes

// Far more than programs have. A small packed file can hold any number of lines, and each takes
// memory.
constexpr std::size_t most_code = std::size_t{1} << 24;    // strings, instructions
constexpr std::size_t most_inlined = std::size_t{1} << 8;  // of one instruction
constexpr std::size_t most_stacks = std::size_t{1} << 26;  // stacks, sizes
constexpr std::size_t most_string_bytes = std::size_t{1} << 30;

}  // namespace

bool heaptrack_recording::start_reading(std::string& error) {
  lines_ = lines_behind(head_, source_, error);
  return lines_.has_value();
}

bool heaptrack_recording::open(std::string& refusal) {
  if (!read_recording_head(source_, head_, refusal)) return false;
  if (head_.is_raw) {
    refusal = "is a raw recording; heaptrack_interpret makes of it what can be converted";
    return false;
  }
  if (!start_reading(refusal)) return false;
  std::string_view line;
  while (lines_->next(line)) read_code(line);
  return start_reading(refusal);
}

std::string heaptrack_recording::fault() const {
  if (!lines_->fault().empty()) return lines_->fault();
  return end_seen_ ? "" : "the recording breaks off";
}

bool heaptrack_recording::is_full() const {
  return code_.strings() >= most_code || code_.instructions() >= most_code ||
         string_bytes_ >= most_string_bytes || stacks_.stacks() >= most_stacks ||
         allocations_.size() >= most_stacks;
}

void heaptrack_recording::read_code(std::string_view line) {
  const std::string_view rest = line.substr(line.empty() ? 0 : 1);
  const char what = line.empty() ? '#' : line.front();
  if (is_full() && std::string_view("sita").find(what) != std::string_view::npos) {
    unreadable_.add(lines_->number());
    return;
  }
  switch (what) {
    case 's':
      string_bytes_ += rest.size();
      return read_string(rest);
    case 'i':
      return read_instruction(rest);
    case 't':
      return read_stack(rest);
    case 'a':
      return read_allocation(rest);
    default:
      return;
  }
}

bool heaptrack_recording::read_event(std::string_view line, recorded_event& event) {
  using kind = recorded_event::kind;
  if (line.empty()) return false;
  const std::string_view rest = line.substr(1);
  switch (line.front()) {
    case '+':
      return read_event(kind::allocation, allocations_.size(), rest, event);
    case '-':
      return read_event(kind::release, allocations_.size(), rest, event);
    case 'c':
      return read_event(kind::time, longest_run, rest, event);
    case 'R':
      if (!read_event(kind::resident_memory, most_resident / head_.page_size, rest, event))
        return false;
      event.value *= head_.page_size;
      return true;
    case 'A':
      event = {kind::attached, 0};
      return true;
    case '#':
      // The recorder's closing words.
      end_seen_ = end_seen_ || line.starts_with("# ips:");
      return false;
    case 's':
    case 'i':
    case 't':
    case 'a':
    case 'S':  // leaks that the program wants its users not to see
      return false;
    default:
      unreadable_.add(lines_->number());
      return false;
  }
}

bool heaptrack_recording::read_event(recorded_event::kind what, std::uint64_t limit,
                                     std::string_view line, recorded_event& event) {
  event.what = what;
  if (line_fields fields(line); fields.take(event.value) && event.value < limit) return true;
  unreadable_.add(lines_->number());
  return false;
}

void heaptrack_recording::read_string(std::string_view line) {
  line_fields fields(line);
  std::uint64_t length = 0;
  const bool is_sized = head_.format >= 3;
  const bool has_size = !is_sized || fields.take(length);
  const std::string_view text = fields.rest();
  if (!has_size || (is_sized && text.size() != length)) unreadable_.add(lines_->number());
  code_.add_string(text);
}

void heaptrack_recording::read_instruction(std::string_view line) {
  line_fields fields(line);
  std::uint64_t address = 0, module = 0;
  bool sound = fields.take(address) && fields.take(module);
  frames_.clear();
  while (sound && !fields.empty()) {
    if (frames_.size() == most_inlined) {
      sound = false;
      break;
    }
    recorded_code::frame& frame = frames_.emplace_back();
    sound = fields.take(frame.function);
    // The last of the functions may lack its place.
    if (sound && !fields.empty()) sound = fields.take(frame.file) && fields.take(frame.line);
  }
  if (frames_.empty()) frames_.emplace_back();
  if (!sound || !code_.add_instruction(address, module, frames_)) {
    unreadable_.add(lines_->number());
    code_.add_unknown_instruction();
  }
}

void heaptrack_recording::read_stack(std::string_view line) {
  line_fields fields(line);
  std::uint64_t instruction = 0, parent = 0;
  if (fields.take(instruction) && fields.take(parent) && stacks_.add_stack(instruction, parent)) {
    return;
  }
  unreadable_.add(lines_->number());
  stacks_.add_unknown_stack();
}

void heaptrack_recording::read_allocation(std::string_view line) {
  line_fields fields(line);
  allocation& made = allocations_.emplace_back();
  if (fields.take(made.size) && fields.take(made.stack) && made.size <= max_size &&
      made.stack <= stacks_.stacks()) {
    return;
  }
  unreadable_.add(lines_->number());
  made = {};
}

}  // namespace kiv::convert
