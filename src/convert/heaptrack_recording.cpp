#include "convert/heaptrack_recording.h"

#include <fmt/format.h>

namespace kiv::convert {
namespace {

constexpr std::uint64_t newest_format = 3;
constexpr std::uint64_t longest_run = std::uint64_t{1} << 42;    // milliseconds
constexpr std::uint64_t largest_page = std::uint64_t{1} << 32;   // bytes
constexpr std::uint64_t most_resident = std::uint64_t{1} << 48;  // bytes

}  // namespace

bool heaptrack_recording::start_reading(std::string& error) {
  std::unique_ptr<recording_bytes> bytes = source_(error);
  if (bytes == nullptr) return false;
  lines_.emplace(std::move(bytes));
  return true;
}

bool heaptrack_recording::open(std::string& refusal) {
  if (!start_reading(refusal) || !read_start(refusal)) return false;
  std::string_view line;
  while (lines_->next(line)) read_code(line);
  return start_reading(refusal);
}

// Tells a recording from other files, the raw ones among them, before anything comes of it.
bool heaptrack_recording::read_start(std::string& refusal) {
  std::string_view line;
  if (!lines_->next(line) || !read_version(line, refusal)) {
    if (refusal.empty()) {
      refusal = lines_->fault().empty() ? "is empty" : "is no recording: " + lines_->fault();
    }
    return false;
  }
  while (lines_->next(line)) {
    switch (line.empty() ? '#' : line.front()) {
      case 'x':
      case 'm':
        refusal = "is a raw recording; heaptrack_interpret makes of it what can be converted";
        return false;
      case 'X':
        command_ = line_fields(line.substr(1)).rest();
        break;
      case 'I':
        read_page_size(line.substr(1));
        break;
      case '#':
        break;
      default:
        read_code(line);
        return true;
    }
  }
  return true;
}

void heaptrack_recording::read_page_size(std::string_view line) {
  line_fields fields(line);
  std::uint64_t size = 0;
  if (fields.take(size) && size != 0 && size <= largest_page) {
    page_size_ = size;
  } else {
    unreadable_.add(lines_->number());
  }
}

bool heaptrack_recording::read_version(std::string_view line, std::string& refusal) {
  std::uint64_t recorder = 0;
  line_fields fields(line.substr(line.empty() ? 0 : 1));
  if (!line.starts_with("v ") || !fields.take(recorder) || !fields.take(format_)) {
    refusal = "is no recording of heaptrack";
    return false;
  }
  if (format_ == 0 || format_ > newest_format) {
    refusal = fmt::format("has the recorder's file format {}; 1 to {} can be read", format_,
                          newest_format);
    return false;
  }
  recorder_ = fmt::format("heaptrack {:x}.{:x}.{:x}", recorder >> 16 & 0xff, recorder >> 8 & 0xff,
                          recorder & 0xff);
  return true;
}

std::string heaptrack_recording::fault() const {
  if (!lines_->fault().empty()) return lines_->fault();
  return end_seen_ ? "" : "the recording breaks off";
}

void heaptrack_recording::read_code(std::string_view line) {
  const std::string_view rest = line.substr(line.empty() ? 0 : 1);
  switch (line.empty() ? '#' : line.front()) {
    case 's':
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
      if (!read_event(kind::resident_memory, most_resident / page_size_, rest, event)) return false;
      event.value *= page_size_;
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
    case 'v':
    case 'X':
    case 'I':
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
  const bool is_sized = format_ >= 3;
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
