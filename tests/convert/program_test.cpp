#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>

#include "conversion_fixture.h"
#include "recording_text.h"
#include "report/json_reader.h"

// The program as its users and their scripts call it.
namespace kiv::test {
namespace {

class Kivconvert : public ConversionTest {
 protected:
  struct ended {
    int status;
    std::string out, err;
  };
  ended call(const std::string& program, const std::string& arguments) const {
    const std::string command =
        "cd '" + dir_.path() + "' && '" + program + "' " + arguments + " >out 2>err </dev/null";
    const int status = std::system(command.c_str());
    return {WEXITSTATUS(status), read_file(dir_ / "out"), read_file(dir_ / "err")};
  }
  ended convert(const std::string& arguments) const { return call(KIVCONVERT_PROGRAM, arguments); }
  json_value report(const std::string& run) const {
    return read_json(call(KIVDB_PROGRAM, "report " + run + " --json").out)["runs"];
  }

  // Leaks so many bytes.
  static recording leaking(std::uint64_t bytes) {
    recording r;
    const auto stack = r.calls({"main"});
    const auto equal = r.allocation(bytes, stack), passing = r.allocation(1, stack);
    return r.make(equal, 0x10).pass(passing, 60).make(equal, 0x20).end(equal, 0x10);
  }
};

TEST_F(Kivconvert, SeveralRecordingsAreTheProcessesOfOneRun) {
  write("heaptrack.app.41.zst", leaking(100).text());
  write("heaptrack.app.42", leaking(20).text());
  const auto run = convert("heaptrack.app.41.zst heaptrack.app.42 -o new/DAY7/ --start 1700000000");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out + run.err, "");
  const json_value runs = report("new/DAY7");
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0]["run"].scalar, "DAY7");
  const json_value& traces = runs[0]["traces"];
  ASSERT_EQ(traces.size(), 2u);
  for (const auto& [trace, pid, bytes] : {std::tuple(0u, 41, 100), {1u, 42, 20}}) {
    EXPECT_EQ(traces[trace]["pid"].number(), pid);
    EXPECT_EQ(traces[trace]["program"].scalar, "app");
    EXPECT_EQ(traces[trace]["complete"].scalar, "true");
    EXPECT_EQ(traces[trace]["leaked"]["bytes"].number(), bytes);
    EXPECT_NE(traces[trace]["start"].scalar.find("-11-14 "), std::string::npos);
  }
}

TEST_F(Kivconvert, ProcessIdsComeFromNamesOrInTheOrderOfTheRecordings) {
  for (const char* name : {"a.41.zst", "a.41.gz", "41", "heaptrack.x", "a.0.zst", "a.4294967296"}) {
    write(name, leaking(8).text());
  }
  const struct {
    std::string arguments;
    int status;
    std::string pids;  // of the run
    std::string_view message;
  } cases[] = {
      {"a.41.zst", 0, "41", ""},
      {"41", 0, "41", ""},
      {"heaptrack.x --pid 7 a.41.zst", 0, "41 7", ""},
      {"a.41.zst a.41.gz --pid 7 --pid 8", 0, "7 8", ""},
      {"a.41.zst a.41.gz", 1, "", "two recordings of process 41"},
      {"a.41.zst heaptrack.x --pid 41 --pid 41", 1, "", "two recordings of process 41"},
      {"a.41.zst --pid 7 --pid 8", 1, "", "more --pid than recordings"},
      {"heaptrack.x", 1, "", "heaptrack.x: the name holds no process id"},
      {"a.0.zst", 1, "", "no process id"},
      {"a.4294967296", 1, "", "no process id"},
      {"a.41.zst --pid 0", 1, "", "--pid"},
      {"a.41.zst --pid -1", 1, "", "--pid"},
  };
  for (const auto& [arguments, status, pids, message] : cases) {
    std::filesystem::remove_all(dir_ / "run");
    const auto run = convert(arguments + " -o run");
    EXPECT_EQ(run.status, status) << arguments << ": " << run.err;
    EXPECT_NE((run.err + run.out).find(message), std::string::npos) << arguments << ": " << run.err;
    EXPECT_EQ(std::filesystem::exists(dir_ / "run"), status == 0) << arguments;
    std::string found;
    if (status == 0) {
      const json_value runs = report("run");
      for (const json_value& trace : runs[0]["traces"].elements) {
        found += (found.empty() ? "" : " ") + trace["pid"].scalar;
      }
    }
    EXPECT_EQ(found, pids) << arguments;
  }
}

TEST_F(Kivconvert, StatusAndMessageSayWhatBecameOfEachRecording) {
  write("good.1", leaking(8).text());
  write("cut.2", leaking(8).cut());
  write("bad.3", "no recording\n");
  write("raw.4.raw", leaking(8).raw_text());
  write("raw.4", leaking(8).text());
  write("file", "");
  std::filesystem::create_directory(dir_ / "directory.5");
  ASSERT_EQ(mkfifo((dir_ / "fifo.6").c_str(), 0600), 0);
  const struct {
    std::string arguments;
    int status;
    std::size_t traces;
    std::string_view message;
  } cases[] = {
      {"good.1", 0, 1, ""},
      {"cut.2", 3, 1, "kivconvert: cut.2: the recording breaks off behind line "},
      {"bad.3", 2, 0, "kivconvert: bad.3: is no recording of heaptrack"},
      {"good.1 cut.2", 3, 2, "cut.2"},
      {"bad.3 good.1 cut.2", 2, 2, "bad.3"},
      {"missing.9", 2, 0, "missing.9: No such file"},
      {"directory.5", 2, 0, "directory.5: is no regular file"},
      {"fifo.6", 2, 0, "fifo.6: is no regular file"},
      {"raw.4", 0, 1, ""},
      {"raw.4 --raw", 0, 1, ""},
      {"raw.4.raw --pid 4", 2, 0, "is a raw recording"},
      {"good.1 --raw", 1, 0, "good.1: no raw recording stands beside it"},
      {"good.1 --start 4294967296", 1, 0, "--start"},
      {"good.1 --start -1", 1, 0, "--start"},
      {"good.1 --start now", 1, 0, "--start"},
      {"good.1 --run ''", 1, 0, "an argument is empty, after --run"},
      {"'' good.1", 1, 0, "an argument is empty"},
      {"good.1 --nonsense", 1, 0, "--nonsense"},
      {"", 1, 0, "RECORDING"},
  };
  for (const auto& [arguments, status, traces, message] : cases) {
    std::filesystem::remove_all(dir_ / "run");
    const auto run = convert(arguments + " -o run");
    EXPECT_EQ(run.status, status) << arguments << ": " << run.err;
    EXPECT_NE(run.err.find(message), std::string::npos) << arguments << ": " << run.err;
    EXPECT_EQ(run.err.empty(), status == 0) << arguments << ": " << run.err;
    EXPECT_EQ(std::filesystem::exists(dir_ / "run"), traces != 0) << arguments;
    if (traces == 0) continue;
    const json_value runs = report("run");
    ASSERT_EQ(runs[0]["traces"].size(), traces) << arguments;
    EXPECT_EQ(runs[0]["traces"].elements.back()["complete"].scalar, status == 0 ? "true" : "false");
  }
  EXPECT_EQ(convert("good.1").status, 1) << "no directory to write to";
  EXPECT_EQ(convert("good.1 -o file").status, 2);
  EXPECT_EQ(convert("good.1 -o file/run").status, 2);
  for (const char* told : {"--help", "--version"}) {
    const auto run = convert(told);
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("kivconvert"), std::string::npos) << told;
  }
}

TEST_F(Kivconvert, TheRawRecordingBesideItTellsEqualBlocksApart) {
  write("x.5.zst", leaking(100).text());
  write("x.5.raw.zst", leaking(100).raw_text());
  ASSERT_EQ(convert("x.5.zst -o plain").status, 0);
  ASSERT_EQ(convert("x.5.zst -o exact --raw").status, 0);
  EXPECT_EQ(report("plain")[0]["traces"][0]["temporary"]["blocks"].number(), 61);
  EXPECT_EQ(report("exact")[0]["traces"][0]["temporary"]["blocks"].number(), 60);
}

TEST_F(Kivconvert, TracesOfOthersInTheDirectoryAreNamed) {
  write("x.5", leaking(8).text());
  write("x.6", leaking(8).text());
  ASSERT_EQ(convert("x.5 -o run --run FIRST").status, 0);
  EXPECT_EQ(convert("x.5 -o run --run SECOND").err, "") << "its own trace is replaced";
  EXPECT_EQ(report("run")[0]["run"].scalar, "SECOND");
  const auto run = convert("x.6 -o run");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            "kivconvert: run/kiv.5.kivhdr is there already; its process is part of the run too\n");
}

}  // namespace
}  // namespace kiv::test
