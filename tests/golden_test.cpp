#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/run_trace.h"
#include "support/stories.h"

// What a run leaves of each story, compared byte by byte with the files under
// tests/golden/<story>. After a change that is meant to change them: KIV_UPDATE_GOLDEN=1, then
// read the difference line by line.

namespace kiv::test {
namespace {

namespace fs = std::filesystem;

std::string without_announced_files(const std::string& out) {
  std::string rest;
  for (std::size_t at = 0; at < out.size();) {
    const std::size_t end = std::min(out.find('\n', at), out.size() - 1) + 1;
    if (out.compare(at, 9, "csv_file:") != 0) rest.append(out, at, end - at);
    at = end;
  }
  return rest;
}

// Of a file by its name, of a table all parts; for the streams see `story`.
std::string part_of(const run_result& run, const std::string& what) {
  if (what == "stdout") return run.out;
  if (what == "stderr") return run.err;
  if (what == "messages") return without_announced_files(run.out);
  if (what == "records") return run.err.substr(run.err.find("Opening file"));
  const auto file = run.files.find(what);
  return file != run.files.end() ? file->second : run.bytes(what);
}

template <class Names>
void expect_golden(std::string_view name, const run_result& run, const Names& about) {
  EXPECT_EQ(run.status, 0);
  const fs::path folder = fs::path(KIV_SOURCE_DIR "/tests/golden") / name;
  const bool update = std::getenv("KIV_UPDATE_GOLDEN") != nullptr;
  if (update) {
    fs::remove_all(folder);
    fs::create_directories(folder);
  }
  std::size_t known = 0, found = 0;
  for (const auto& what : about) {
    const std::string part = part_of(run, std::string(what));
    EXPECT_NE(part, "") << what << " says nothing";
    if (update) {
      ASSERT_TRUE(write_file(folder / what, part));
    }
    ASSERT_TRUE(fs::exists(folder / what)) << what << " is new";
    EXPECT_EQ(first_difference(read_file(folder / what), part), "") << "in " << folder / what;
    ++known;
  }
  for (const auto& file : fs::directory_iterator(folder)) {
    EXPECT_LE(++found, known) << file.path() << " is of no use";
  }
}

class Golden : public testing::TestWithParam<story> {};

TEST_P(Golden, StoryLeavesTheSameTablesAndMessages) {
  trace t;
  GetParam().tell(t);
  expect_golden(GetParam().name, run_trace(t, GetParam().args), GetParam().about);
}

std::string name_of(const testing::TestParamInfo<story>& one) {
  return std::string(one.param.name);
}

INSTANTIATE_TEST_SUITE_P(Clean, Golden, testing::ValuesIn(clean_stories()), name_of);
INSTANTIATE_TEST_SUITE_P(Damaged, Golden, testing::ValuesIn(damaged_stories()), name_of);

// The header is listed element by element, and the fields of its record types.
TEST(GoldenRun, DebugLevelTwoListsTheHeader) {
  trace t;
  for (const char tag : all_tags()) {
    if (tag != 'T' && tag != 'O') t.without_entry(tag);
  }
  expect_golden("listed_header", run_trace(t.unclosed(), {"-D"}), std::vector{"stdout", "stderr"});
}

TEST(GoldenRun, DebugLevelOneListsWhatIsRare) {
  trace t;
  every_record_type_once(t);
  expect_golden("listed_at_level_1", run_trace(t, {"-d"}), std::vector{"records"});
}

// Traces of one run continue its files, record and marker numbers; only the first one announces
// its files. A table that has reached its size goes on in a file of the next number, which is
// announced; another run id begins files of its own with the numbers that the tables have.
TEST(GoldenRun, TracesContinueTheFilesAndNumbersOfTheirRun) {
  const auto tell = [](trace& t, std::uint32_t first_pid) {
    t.proc(first_pid, "p").reserve(1, "oic:x").sbrk(0x1000, 64).mallinfo(1, 2, 3);
    for (const std::uint32_t size : {1U, 2U, 3U}) t.malloc_wf(1, 0, 0x10 + size, size, 16);
    t.query_in(0, 'p', "q").sbrk(0x2000, 64).free(1, 0, 0x11).query_out(1).proc_end(first_pid);
  };
  trace first, second, third;
  tell(first.runid("R42").pid(7), 70);
  tell(second.runid("R42").pid(8).big_endian(), 80);
  tell(third.runid("R43").pid(9), 90);
  const temp_dir dir;
  for (const trace* t : {&first, &second, &third}) ASSERT_TRUE(t->write(dir.path(), "."));
  const run_result run = run_in_order(
      dir.path(), {first.header_name(), second.header_name(), third.header_name()}, 600);
  std::vector<std::string> about = {"stdout", "stderr"};
  for (const auto& [name, bytes] : run.files) {
    for (const char* table :
         {"memory", "marker", "queryevents", "process", "sbrk", "arena", "runs", "sql"}) {
      if (name.find("." + std::string(table)) != name.npos) about.push_back(name);
    }
  }
  expect_golden("several_traces", run, about);
}

// A trace of a process that was still running: the header has no end, the file that was being
// written is cut, the next one is missing. What there is counts.
TEST(GoldenRun, CutAndMissingFilesLoseOnlyWhatTheyHeld) {
  trace t;
  t.unclosed().start(1'700'000'000).reserve(1, "oic:x").proc(7, "server").schedule(0, 7);
  t.malloc_wf(1, 0, 16, 8, 16).malloc_wf(1, 0, 32, 8, 16).time(1'700'000'001).marker("cut off");
  t.data(0).resize(t.data(0).size() - 5);
  t.recorded_size(0, "999999").next_file().malloc_wf(1, 0, 48, 8, 16).next_file().marker("unseen");
  t.next_file().marker("last");
  const temp_dir dir;
  ASSERT_TRUE(t.write(dir / "T", "./T"));
  fs::remove(dir / "T/" + t.data_name(2));
  expect_golden("cut_and_missing_files", run_kiv(dir.path(), {"-R", "T"}),
                std::vector{"stdout", "stderr", "marker", "memory", "process", "runs"});
}

TEST(GoldenRun, SampleShowsWhatItsGuideSays) {
  const temp_dir dir;
  fs::copy(KIV_SOURCE_DIR "/samples/MIX", dir / "MIX");
  expect_golden("mix", run_kiv(dir.path(), {"-R", "MIX"}, KIV_PROGRAM),
                std::vector{"memory", "freemem", "kiv.MIX.sql", "stdout"});
}

}  // namespace
}  // namespace kiv::test
