#include "convert/convert_recording.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "convert/heaptrack_recording.h"
#include "convert/live_blocks.h"
#include "convert/raw_recording.h"
#include "convert/size_classes.h"
#include "convert/traced_code.h"
#include "trace/heap_events.h"
#include "trace/id_events.h"
#include "trace/memory_events.h"
#include "trace/process_events.h"
#include "trace/time_marker_events.h"
#include "trace/trace_writer.h"

namespace kiv::convert {
namespace {

constexpr std::uint64_t largest_number = UINT32_MAX;  // of a record

// A block's address in the trace comes from its number: the recording has none. Blocks too large
// for one record are several, whose addresses differ above the numbers.
constexpr std::int64_t part_distance = std::int64_t{1} << 40;
std::int64_t address_of(std::uint32_t block) { return (std::int64_t{block} + 1) * 16; }

// When the file was made; when it was written last if that was before, as of a copy it is.
moment file_time(const std::string& path) {
  struct statx info {};
  if (statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME | STATX_MTIME, &info) != 0) return {};
  const auto before = [](const statx_timestamp& a, const statx_timestamp& b) {
    return std::pair(a.tv_sec, a.tv_nsec) < std::pair(b.tv_sec, b.tv_nsec);
  };
  const bool has_birth = (info.stx_mask & STATX_BTIME) != 0;
  const statx_timestamp& time =
      has_birth && before(info.stx_btime, info.stx_mtime) ? info.stx_btime : info.stx_mtime;
  return {time.tv_sec, time.tv_nsec};
}

// "/usr/bin/sqlite3 x.db" is the program sqlite3.
std::string program_of(const std::string& command) {
  const std::string path = command.substr(0, command.find(' '));
  return path.substr(path.rfind('/') + 1);
}

trace_identity identity_of(const conversion& wanted, const heaptrack_recording& recording,
                           moment start) {
  trace_identity made;
  made.run_id = wanted.run_id;
  made.pid = static_cast<int>(wanted.pid);
  made.program = program_of(recording.head().command);
  made.environment = recording.head().recorder;
  made.start = start;
  return made;
}

trace_writer::options options_of(const conversion& wanted) {
  trace_writer::options made;
  made.directory = wanted.directory;
  return made;
}

// One conversion.
class converter {
 public:
  converter(const conversion& wanted, heaptrack_recording& recording,
            std::unique_ptr<raw_recording> raw)
      : wanted_(wanted),
        recording_(recording),
        raw_(std::move(raw)),
        start_(wanted.start ? *wanted.start : file_time(wanted.recording)),
        trace_(identity_of(wanted, recording, start_), options_of(wanted)),
        code_(recording.code(), recording.stacks(), wanted.pid, trace_) {}

  conversion_result run(const std::function<void(std::uint64_t)>& progress);

 private:
  struct traced_allocation {
    recorded_stacks::allocator by;
    std::uint32_t color = 0;
  };

  void begin();
  void end();
  void apply(const recorded_event& event);
  void allocate(std::uint32_t allocation);
  void release(std::uint32_t allocation);
  void set_time(std::uint64_t milliseconds);
  void grow(std::uint64_t resident);
  void mark(const std::string& words) { trace_.write(KivMarker{words}); }
  const traced_allocation& traced(std::uint32_t allocation);
  void stop_using_raw();
  // `last`: the last event of the recording.
  void tell_of_faults(const recorded_event& last, conversion_result& result) const;

  moment now() const {
    const std::int64_t nsecs = start_.nsecs + milliseconds_ % 1000 * 1'000'000;
    return {start_.secs + milliseconds_ / 1000 + nsecs / 1'000'000'000, nsecs % 1'000'000'000};
  }

  const conversion& wanted_;
  heaptrack_recording& recording_;
  std::unique_ptr<raw_recording> raw_;
  const moment start_;
  trace_writer trace_;
  traced_code code_;
  live_blocks blocks_;
  std::vector<traced_allocation> allocations_;  // as far as they were used
  std::vector<std::uint64_t> live_bytes_;       // by object
  std::int64_t milliseconds_ = 0;
  std::uint64_t resident_ = 0;  // the most so far
  std::uint64_t split_ = 0;     // allocations too large for one record
  recording_faults unknown_releases_;
  std::string raw_fault_;
};

conversion_result converter::run(const std::function<void(std::uint64_t)>& progress) {
  conversion_result result;
  constexpr std::uint64_t events_between = 65536;
  std::uint64_t events = 0;
  if (trace_.open()) {
    begin();
    recorded_event event{};
    while (trace_.error().empty() && recording_.next(event)) {
      apply(event);
      if (++events % events_between == 0) progress(recording_.bytes_taken());
    }
    tell_of_faults(event, result);
    if (result.how == conversion_result::outcome::complete) {
      end();
      trace_.close(now());
    } else {
      trace_.flush();
    }
  }
  if (!trace_.error().empty()) {
    result.how = conversion_result::outcome::not_written;
    result.messages.push_back(trace_.error());
  }
  return result;
}

void converter::begin() {
  const std::string program = program_of(recording_.head().command);
  set_time(0);
  trace_.write(KivProcessStart{wanted_.pid, 0, program});
  trace_.write(KivProcessSpecialLoad{wanted_.pid, 0, program});
  trace_.write(KivSchedule{0, wanted_.pid});
  mark("start of " + recording_.head().command);
  code_.announce();
  live_bytes_.resize(recording_.code().objects() + 1);
}

void converter::end() {
  code_.go_to(0);
  for (std::uint32_t object = 1; object < live_bytes_.size(); ++object) {
    // More than the record can tell would pass for a fault; such blocks are left to the trace's
    // end, which makes leaks of them too.
    if (live_bytes_[object] > largest_number) continue;
    KivFreeId freed;
    freed.id = object;
    freed.tot_size_wf = static_cast<std::uint32_t>(live_bytes_[object]);
    trace_.write(freed);
  }
  mark(fmt::format("end after {}.{:03} s", milliseconds_ / 1000, milliseconds_ % 1000));
  trace_.write(KivProcessEnd{wanted_.pid});
}

void converter::apply(const recorded_event& event) {
  using kind = recorded_event::kind;
  switch (event.what) {
    case kind::allocation:
      return allocate(static_cast<std::uint32_t>(event.value));
    case kind::release:
      return release(static_cast<std::uint32_t>(event.value));
    case kind::time:
      return set_time(event.value);
    case kind::resident_memory:
      return grow(event.value);
    case kind::attached:
      return mark("recorder attached to the running program");
  }
}

const converter::traced_allocation& converter::traced(std::uint32_t allocation) {
  while (allocations_.size() <= allocation) {
    const auto& next = recording_.allocation_at(allocations_.size());
    allocations_.push_back(
        {recording_.stacks().allocator_of(next.stack), size_class_of(next.size)});
  }
  return allocations_[allocation];
}

void converter::allocate(std::uint32_t allocation) {
  const traced_allocation& made = traced(allocation);
  std::uint64_t size = recording_.allocation_at(allocation).size;
  const std::uint32_t block = blocks_.add(allocation);
  if (raw_ != nullptr && !raw_->add(size, block)) stop_using_raw();
  code_.use_location(made.by.location);
  code_.go_to(made.by.path);
  live_bytes_[made.by.object] += size;
  if (size > largest_number) ++split_;
  KivMallocWF record;
  record.id = made.by.object;
  record.color = made.color;
  record.addr = address_of(block);
  record.location = made.by.location;
  do {
    record.size = record.tot_size = static_cast<std::uint32_t>(std::min(size, largest_number));
    trace_.write(record);
    size -= record.size;
    record.addr += part_distance;
  } while (size != 0);
}

void converter::release(std::uint32_t allocation) {
  std::uint32_t block = live_blocks::none;
  if (raw_ != nullptr && !(raw_->remove(block) && blocks_.remove(allocation, block))) {
    stop_using_raw();
    block = live_blocks::none;
  }
  if (block == live_blocks::none) block = blocks_.remove_youngest(allocation);
  if (block == live_blocks::none) {
    unknown_releases_.add(recording_.line());
    return;
  }
  const traced_allocation& made = traced(allocation);
  std::uint64_t size = recording_.allocation_at(allocation).size;
  live_bytes_[made.by.object] -= size;
  KivFree record{made.by.object, made.color, address_of(block), 0};
  do {
    trace_.write(record);
    size -= std::min(size, largest_number);
    record.addr += part_distance;
  } while (size != 0);
}

void converter::set_time(std::uint64_t milliseconds) {
  milliseconds_ = static_cast<std::int64_t>(milliseconds);
  const moment time = now();
  trace_.write(
      KivTimeStamp{static_cast<std::uint32_t>(time.secs), static_cast<std::uint32_t>(time.nsecs)});
}

void converter::grow(std::uint64_t resident) {
  while (resident > resident_) {
    const std::uint64_t part = std::min(resident - resident_, largest_number);
    trace_.write(KivSbrk{static_cast<std::int64_t>(resident_), static_cast<std::uint32_t>(part)});
    resident_ += part;
  }
}

void converter::stop_using_raw() {
  if (raw_->at_end()) {
    raw_fault_ = fmt::format("{} ends too early, behind line {}{}{}", wanted_.raw, raw_->line(),
                             raw_->fault().empty() ? "" : ": ", raw_->fault());
  } else {
    raw_fault_ = fmt::format("{} tells other allocations from line {} on: it is of another run",
                             wanted_.raw, raw_->line());
  }
  raw_fault_ += "; from there on equal blocks end youngest first";
  raw_.reset();
}

void converter::tell_of_faults(const recorded_event& last, conversion_result& result) const {
  const auto lost = [&](std::string words) {
    result.how = conversion_result::outcome::incomplete;
    result.messages.push_back(std::move(words));
  };
  if (!recording_.complete()) {
    lost(fmt::format("{} behind line {}", recording_.fault(), recording_.line()));
  } else if (last.what != recorded_event::kind::resident_memory) {
    // The recorder writes what it still holds, and ends with the resident memory, when the program
    // cleans up.
    lost("the program was killed or left by _exit, abort or exec: what it did last is missing");
  }
  if (const recording_faults& faults = recording_.unreadable(); faults.count == 1) {
    lost(fmt::format("line {} cannot be read", faults.first_line));
  } else if (faults.count > 1) {
    lost(fmt::format("{} lines cannot be read, the first of them is line {}", faults.count,
                     faults.first_line));
  }
  if (unknown_releases_.count == 1) {
    lost(fmt::format("line {} ends a block that is not live", unknown_releases_.first_line));
  } else if (unknown_releases_.count > 1) {
    lost(fmt::format("{} lines end blocks that are not live, the first of them is line {}",
                     unknown_releases_.count, unknown_releases_.first_line));
  }
  if (!raw_fault_.empty()) lost(raw_fault_);
  if (recording_.stacks().left_out_calls()) {
    lost(fmt::format("calls beyond a depth of {} or {} call paths are left out",
                     recorded_stacks::max_depth, recorded_stacks::max_paths));
  }
  if (split_ != 0) {
    result.messages.push_back(
        fmt::format("allocations of more than 4 GiB, which are several blocks each: {}", split_));
  }
}

// Null, with the reason, when the file is no raw recording.
std::unique_ptr<raw_recording> open_raw(const std::string& path, std::string& refusal) {
  const recording_source source = [&](std::string& fault) { return open_recording(path, fault); };
  recording_head head;
  std::optional<recording_lines> lines;
  if (read_recording_head(source, head, refusal)) {
    if (!head.is_raw) refusal = "is no raw recording";
    lines = lines_behind(head, source, refusal);
  }
  if (!refusal.empty()) {
    refusal = path + ": " + refusal;
    return nullptr;
  }
  return std::make_unique<raw_recording>(std::move(*lines));
}

}  // namespace

conversion_result convert_recording(const conversion& wanted,
                                    const std::function<void(std::uint64_t)>& progress) {
  const auto refused = [](std::string words) {
    return conversion_result{conversion_result::outcome::refused, {std::move(words)}};
  };
  std::string refusal;
  std::unique_ptr<raw_recording> raw;
  if (!wanted.raw.empty()) {
    raw = open_raw(wanted.raw, refusal);
    if (raw == nullptr) return refused(std::move(refusal));
  }
  heaptrack_recording recording(
      [&](std::string& fault) { return open_recording(wanted.recording, fault); });
  if (!recording.open(refusal)) return refused(std::move(refusal));
  return converter(wanted, recording, std::move(raw)).run(progress);
}

}  // namespace kiv::convert
