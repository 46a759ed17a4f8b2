#include "kivconvert/command_line.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "convert/convert_recording.h"
#include "kivconvert/progress_line.h"
#include "kivconvert/recording_name.h"
#include "trace/header_text.h"
#include "util/directory_name.h"
#include "util/printable.h"

namespace kiv::convert {
namespace {

enum exit_status : int {
  status_done = 0,
  status_usage = 1,
  status_input = 2,       // a file is no recording, or the trace cannot be written
  status_incomplete = 3,  // what could be read is converted
};

struct arguments {
  std::vector<std::string> recordings;
  std::string directory;
  std::string run_id;
  std::vector<std::uint32_t> pids;
  bool raw = false;
  std::optional<std::string> start;
};

void complain(std::string_view what) {
  std::fprintf(stderr, "kivconvert: %s\n", printable(what).c_str());
}

std::optional<moment> parsed_time(std::string_view text) {
  moment time;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), time.secs);
  const bool whole = error == std::errc() && end == text.data() + text.size();
  if (!whole || time.secs < 0 || time.secs > UINT32_MAX) return {};
  return time;
}

// A run's id is part of the names of its tables.
std::string run_id_of(const arguments& given) {
  if (!given.run_id.empty()) return given.run_id;
  const std::string name = directory_name(given.directory);
  return name.empty() ? "RUN" : name;
}

// What is to be converted, in the order of the command line; empty, and said why, when the command
// line is wrong.
std::vector<conversion> conversions(const arguments& given) {
  std::vector<conversion> all;
  std::set<std::uint32_t> pids;
  std::optional<moment> start;
  if (given.start) {
    start = parsed_time(*given.start);
    if (!start) {
      complain("--start takes seconds since 1970, up to the year 2106");
      return {};
    }
  }
  if (given.pids.size() > given.recordings.size()) {
    complain("there are more --pid than recordings");
    return {};
  }
  for (const std::string& path : given.recordings) {
    conversion& next = all.emplace_back();
    next.recording = path;
    next.directory = given.directory;
    next.run_id = run_id_of(given);
    next.start = start;
    const std::optional<std::uint32_t> pid =
        all.size() <= given.pids.size() ? given.pids[all.size() - 1] : pid_in_name(path);
    if (!pid) {
      complain(path + ": the name holds no process id; give it with --pid");
      return {};
    }
    next.pid = *pid;
    if (!pids.insert(next.pid).second) {
      complain(path + ": two recordings of process " + std::to_string(next.pid) +
               "; give other ids with --pid");
      return {};
    }
    if (!given.raw) continue;
    next.raw = raw_beside(path);
    if (next.raw.empty()) {
      complain(path + ": no raw recording stands beside it");
      return {};
    }
  }
  return all;
}

// All headers of a directory are one run, so what stands there already becomes part of it.
void tell_of_other_traces(const arguments& given, const std::vector<conversion>& all) {
  std::set<std::string> own;
  for (const conversion& one : all) own.insert(header_file_name("kiv", std::to_string(one.pid)));
  std::error_code failure;
  for (std::filesystem::directory_iterator entry(given.directory, failure), end;
       !failure && entry != end; entry.increment(failure)) {
    const std::string name = entry->path().filename().string();
    if (name.find("kivhdr") == std::string::npos || own.contains(name)) continue;
    complain(entry->path().string() + " is there already; its process is part of the run too");
  }
}

int convert(const conversion& wanted) {
  conversion_result result;
  {
    progress_line line(wanted.recording);
    result = convert_recording(wanted, [&](std::uint64_t bytes) { line.show(bytes); });
  }
  for (const std::string& message : result.messages) {
    complain(result.how == conversion_result::outcome::not_written
                 ? message
                 : wanted.recording + ": " + message);
  }
  using outcome = conversion_result::outcome;
  if (result.how == outcome::complete) return status_done;
  return result.how == outcome::incomplete ? status_incomplete : status_input;
}

int convert_all(const arguments& given) {
  const std::vector<conversion> all = conversions(given);
  if (all.empty()) return status_usage;
  tell_of_other_traces(given, all);
  int status = status_done;
  for (const conversion& next : all) {
    const int how = convert(next);
    if (status != status_input && how != status_done) status = how;
  }
  return status;
}

}  // namespace

int kivconvert_main(int argc, char** argv) {
  arguments given;
  CLI::App app("Turns recordings of heaptrack into traces for kiv and kivdb.", "kivconvert");
  app.set_version_flag("--version", "kivconvert " KIVCONVERT_VERSION);
  app.add_option("RECORDING", given.recordings,
                 "What heaptrack wrote, such as heaptrack.app.4711.zst")
      ->required();
  app.add_option("-o,--output", given.directory, "Directory of the run; made when missing")
      ->required();
  app.add_option("--run", given.run_id, "Id of the run, else the directory's name");
  app.add_option("--pid", given.pids,
                 "Process id in place of that in the file's name; repeated, of the recordings in "
                 "their order")
      ->allow_extra_args(false)
      ->check(CLI::Range(1, INT32_MAX));
  app.add_flag("--raw", given.raw,
               "Take from the raw recording beside it which of several equal blocks ended");
  app.add_option("--start", given.start,
                 "When the program started, in seconds since 1970; else when the file was made");
  app.footer(
      "Example: heaptrack ./program; kivconvert heaptrack.program.4711.zst -o run; kivdb report "
      "run\n"
      "Exit status: 0 done, 1 wrong usage, 2 no recording or not written, 3 the recording is not\n"
      "complete: what can be read is converted.");
  for (int i = 1; i < argc; ++i) {
    if (*argv[i] != '\0') continue;
    complain("an argument is empty, after " + std::string(argv[i - 1]));
    return status_usage;
  }
  try {
    app.parse(argc, argv);
    return convert_all(given);
  } catch (const CLI::ParseError& stop) {
    return app.exit(stop) == 0 ? status_done : status_usage;
  } catch (const std::bad_alloc&) {
    complain("out of memory");
  } catch (const std::exception& failure) {
    complain(failure.what());
  }
  return status_input;
}

}  // namespace kiv::convert
