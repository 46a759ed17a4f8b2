// Recordings: any bytes are converted, behind "=raw=" in a line the raw recording that belongs to
// them, and the trace is read back. Whatever the recording was, the trace is sound, and it is
// complete when the conversion says so; no byte that the recording tells of may be missing.

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "convert/convert_recording.h"
#include "convert/heaptrack_recording.h"
#include "profile/profile_trace.h"

namespace kiv::fuzz {
namespace {

// Files in memory where the system has a place for that.
class work_directory {
 public:
  work_directory() {
    const bool in_memory = access("/dev/shm", W_OK) == 0;
    path_ = (in_memory ? "/dev/shm" : std::filesystem::temp_directory_path()) / "kiv_fuzz_XXXXXX";
    if (mkdtemp(path_.data()) == nullptr) std::abort();
  }
  ~work_directory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  work_directory(const work_directory&) = delete;
  work_directory& operator=(const work_directory&) = delete;
  std::string operator/(const char* name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

void write(const std::string& path, std::string_view bytes) {
  std::ofstream file(path, std::ios::binary);
  if (!(file << bytes).flush()) std::abort();
}

// What a reading of the events alone tells.
amount made_in(const std::string& path) {
  convert::heaptrack_recording recording(
      [&](std::string& error) { return convert::open_recording(path, error); });
  std::string error;
  if (!recording.open(error)) std::abort();
  amount made;
  convert::recorded_event event{};
  while (recording.next(event)) {
    if (event.what != convert::recorded_event::kind::allocation) continue;
    const std::uint64_t size = recording.allocation_at(event.value).size;
    ++made.blocks;
    made.bytes += size;
  }
  return made;
}

void check(const profile& trace, bool complete, const amount& expected) {
  for (const loss& one : trace.losses) {
    if (complete || one.what != "header not closed") std::abort();
  }
  amount made, ended;
  for (const block_group& group : trace.groups) {
    made += group[figure::made];
    ended += group[figure::freed] + group.leaked();
  }
  if (made.bytes != expected.bytes || made.blocks < expected.blocks || !(ended == made)) {
    std::abort();
  }
}

void convert_and_check(std::string_view input) {
  static const work_directory work;
  constexpr std::string_view divider = "=raw=\n";
  const std::size_t end = input.find(divider);
  convert::conversion wanted;
  wanted.recording = work / "recording";
  wanted.directory = work / "run";
  wanted.run_id = "RUN";
  wanted.pid = 7;
  wanted.start = moment{1'700'000'000, 0};
  write(wanted.recording, input.substr(0, end));
  if (end != std::string_view::npos) {
    wanted.raw = work / "raw";
    write(wanted.raw, input.substr(end + divider.size()));
  }
  using outcome = convert::conversion_result::outcome;
  const auto result = convert::convert_recording(wanted, [](auto) {});
  if (result.how == outcome::not_written) std::abort();
  if ((result.how != outcome::complete) && result.messages.empty()) std::abort();
  if (result.how == outcome::refused) return;
  profile trace;
  std::string error;
  if (!profile_trace(work / "run/kiv.7.kivhdr", trace, error)) std::abort();
  check(trace, result.how == outcome::complete, made_in(wanted.recording));
}

}  // namespace
}  // namespace kiv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
  kiv::fuzz::convert_and_check({reinterpret_cast<const char*>(bytes), size});
  return 0;
}
