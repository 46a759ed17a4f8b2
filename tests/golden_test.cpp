#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/run_trace.h"
#include "support/stories.h"

// Whole runs, compared byte by byte with the files under tests/golden/<case>. After a change that
// is meant to change them: KIV_UPDATE_GOLDEN=1, then read the difference line by line.

namespace kiv::test {
namespace {

namespace fs = std::filesystem;

struct golden_case {
  const char* name;
  run_result (*run)(const std::string& dir);  // in an empty directory
};

run_result run_directory(const std::string& dir, const trace& t, std::vector<std::string> args) {
  EXPECT_TRUE(t.write(dir + "/T", "./T"));
  args.insert(args.end(), {"-R", "T"});
  return run_kiv(dir, args);
}

const golden_case cases[] = {
    {"every_record",
     [](const std::string& dir) {
       trace t;
       every_record(t);
       return run_directory(dir, t, {});
     }},
    {"listing",
     [](const std::string& dir) {
       trace t;
       every_record(t.big_endian().addr_width(8).split_after(50));
       return run_directory(dir, t, {"-D", "-sd", ",", "-sf", "@", "-T", "two words"});
     }},
    {"damaged",
     [](const std::string& dir) {
       trace t;
       damaged(t);
       t.next_file().marker("second file").raw("E").raw(std::string(2, '\0')).marker("unseen");
       return run_directory(dir, t, {"-d"});
     }},
    {"cut",
     [](const std::string& dir) {
       trace t;
       every_record(t.unclosed().split_after(70));
       t.data(0).resize(t.data(0).size() - 5);
       t.recorded_size(0, "999999").next_file();
       EXPECT_TRUE(t.write(dir + "/T", "./T"));
       fs::remove(dir + "/T/" + t.data_name(2));
       return run_kiv(dir, {"-R", "T"});
     }},
    {"three_traces",
     [](const std::string& dir) {
       trace first, second, third;
       every_record(first);
       random_operations(second.big_endian(), 1, 60);
       second.runid("R42").pid(8);
       third.runid("R43").pid(9).reserve(1, "x").malloc_wf(1, 0, 16, 10, 16).sbrk(16, 32);
       third.mallinfo(1, 2, 3).proc(1, "p").proc_end(1);
       for (const trace* t : {&first, &second, &third}) EXPECT_TRUE(t->write(dir, "."));
       return run_in_order(dir, {first.header_name(), second.header_name(), third.header_name()},
                           8192);
     }},
    {"mix",
     [](const std::string& dir) {
       fs::copy(KIV_SOURCE_DIR "/samples/MIX", dir + "/MIX");
       return run_kiv(dir, {"-R", "MIX"}, KIV_PROGRAM);
     }},
};

class Golden : public testing::TestWithParam<golden_case> {};

TEST_P(Golden, FilesAreAsTheyWere) {
  const temp_dir dir;
  run_result result = GetParam().run(dir.path());
  std::map<std::string, std::string> actual = std::move(result.files);
  actual["stdout"] = result.out;
  actual["stderr"] = result.err;
  actual["status"] = std::to_string(result.status) + "\n";

  const fs::path folder = fs::path(KIV_SOURCE_DIR "/tests/golden") / GetParam().name;
  if (std::getenv("KIV_UPDATE_GOLDEN") != nullptr) {
    fs::remove_all(folder);
    fs::create_directories(folder);
    for (const auto& [name, bytes] : actual) ASSERT_TRUE(write_file(folder / name, bytes));
  }
  std::map<std::string, std::string> expected;
  for (const auto& file : fs::directory_iterator(folder)) {
    expected[file.path().filename()] = read_file(file.path());
  }
  for (const auto& [name, bytes] : expected) {
    ASSERT_TRUE(actual.contains(name)) << name << " was not written";
    EXPECT_EQ(first_difference(bytes, actual[name]), "") << "in " << folder / name;
  }
  for (const auto& [name, bytes] : actual)
    EXPECT_TRUE(expected.contains(name)) << name << " is new";
}

INSTANTIATE_TEST_SUITE_P(Runs, Golden, testing::ValuesIn(cases),
                         [](const auto& chosen) { return std::string(chosen.param.name); });

}  // namespace
}  // namespace kiv::test
