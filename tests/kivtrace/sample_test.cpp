#include <cstdlib>

#include "kivtrace/written_run.h"
#include "report/json_reader.h"

// The sample in C, as its reader calls it.
namespace kiv::test {
namespace {

class SampleProgram : public ::testing::TestWithParam<int> {
 protected:
  int threads() const { return GetParam(); }
  void write_trace() {
    ASSERT_EQ(shell(WRITE_TRACE_PROGRAM " RUN RUN " + std::to_string(threads()) + " >path"), 0);
  }
  int shell(const std::string& command) const {
    return std::system(("cd '" + dir_.path() + "' && " + command).c_str());
  }
  temp_dir dir_;
};

TEST_P(SampleProgram, ItsTraceHasEveryRecordOfItsThreads) {
  write_trace();
  const run_result run = run_kiv(dir_.path(), {"-R", "RUN"});
  EXPECT_EQ(complaints(run), "");
  EXPECT_EQ(run.out.find("Error"), std::string::npos) << run.out;
  EXPECT_EQ(run.out.find("OUT OF SYNC"), std::string::npos);
  const table memory = run.rows("memory");
  ASSERT_EQ(memory.size(), static_cast<std::size_t>(threads() * (1000 * 4 + 990 + 1)));
  EXPECT_EQ(run.rows("flow").size(), static_cast<std::size_t>(threads() * 4001))
      << "one for the start of each process";
  EXPECT_EQ(run.rows("process").size(), static_cast<std::size_t>(threads()) + 1);
}

#ifdef KIVDB_PROGRAM
TEST_P(SampleProgram, ReportNamesItsLeakAndNothingElse) {
  write_trace();
  ASSERT_EQ(shell("'" KIVDB_PROGRAM "' report RUN --of leaked --by path,line --json >report"), 0);
  const json_value report = read_json(read_file(dir_ / "report"));
  const json_value& run = report["runs"][0];
  const json_value& trace = run["traces"][0];
  EXPECT_EQ(trace["complete"].scalar, "true");
  EXPECT_EQ(trace["program"].scalar, "write_trace");
  const int n = threads();
  const struct {
    const char* measure;
    int blocks, bytes, tot_bytes;
  } expected[] = {
      {"allocated", n * 3000, n * 1000 * (120 + 64 + 40), n * 1000 * (136 + 80 + 48)},
      {"freed", n * 1990, n * (1000 * 64 + 990 * 120), n * (1000 * 80 + 990 * 136)},
      {"leaked", n * 10, n * 10 * 120, n * 10 * 136},
      {"released", n * 1000, n * 1000 * 40, n * 1000 * 48},
      {"reset", 0, 0, 0},
  };
  for (const auto& [measure, blocks, bytes, tot_bytes] : expected) {
    SCOPED_TRACE(measure);
    EXPECT_EQ(trace[measure]["blocks"].number(), blocks);
    EXPECT_EQ(trace[measure]["bytes"].number(), bytes);
    EXPECT_EQ(trace[measure]["tot_bytes"].number(), tot_bytes);
  }
  const json_value& lines = run["lists"][1]["rows"];
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0]["name"].scalar, "orders.c:31");
  const json_value& paths = run["lists"][0]["rows"];
  ASSERT_EQ(paths.size(), 1U);
  EXPECT_EQ(paths[0]["frames"][1].scalar, "orders:take");
}
#endif

INSTANTIATE_TEST_SUITE_P(Threads, SampleProgram, ::testing::Values(1, 4));

}  // namespace
}  // namespace kiv::test
