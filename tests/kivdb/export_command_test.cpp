#include "kivdb/kivdb_program.h"

namespace kiv::test {
namespace {

using KivdbExport = Kivdb;

TEST_F(KivdbExport, GoesToAFileOrToTheOutput) {
  write_runs();
  const std::string command = "export A --format speedscope";
  const auto printed = kivdb(command);
  ASSERT_EQ(printed.status, 0) << printed.err;
  EXPECT_EQ(kivdb(command + " -o -").out, printed.out);
  const auto run = kivdb(command + " -o file");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out + run.err, "");
  EXPECT_EQ(read_file(dir_ / "file"), printed.out);
}

TEST_F(KivdbExport, AnExportOfAnIncompleteRunSaysSo) {
  write_runs();
  for (const std::string format : {"collapsed --of leaked", "speedscope", "pprof"}) {
    auto run = kivdb("export C --format " + format);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("run 'C', process 41: not complete: "), std::string::npos) << run.err;
    EXPECT_EQ(kivdb("export A --format " + format).err, "");
  }
}

// The names of a trace are any bytes, and a run of which only tables are there has no call paths.
TEST_F(KivdbExport, ExportsAddUpAsTheReportDoes) {
  trace t;
  t.runid("hostile").proc(7, "ser;ver\n\"\xff").special(7, 0, "ma;in").reserve(3, "oic:o;r\x1b[m");
  t.color(0, "small; \\").object(3).function(3, 1, "ta\nke 1").function(3, 2, "ta ke 1");
  t.hashloc(5, "a:b.c:12").hashloc(6, "\xc2\x85:07").hashloc(7, ":").link(7, 3);
  t.malloc_wf(3, 0, 0x1000, 1, 8).schedule(0, 7).malloc_wf(3, 0, 0x2000, 10, 16, 5);
  t.flow_in(7, 0, 3, 1).query_in(1, 'S', "SELECT\n1;\xff").malloc_wf(3, 0, 0x3000, 100, 104, 6);
  t.query_out(1).flow_out().flow_in(7, 0, 3, 2).malloc_wf(3, 0, 0x4000, 1'000, 1'008, 7);
  t.malloc_nf(3, 0, 0x5000, 10'000, 10'008, 7).free(3, 0, 0x4000).free(3, 0, 0x1000).free_id(3);
  write("hostile", t);
  std::filesystem::copy(KIV_SOURCE_DIR "/samples/MIX", dir_ / "MIX");
  ASSERT_EQ(run_kiv(dir_.path(), {"-R", "MIX"}).status, 0);
  for (const auto& item : std::filesystem::directory_iterator(dir_ / "MIX")) {
    if (item.path().extension() == ".kivhdr") std::filesystem::remove(item.path());
  }
  EXPECT_NE(kivdb("export MIX --format collapsed --of leaked").err.find("have no call paths"),
            std::string::npos);
  write_runs();
  const int status =
      std::system(("cd '" + dir_.path() +
                   "' && TZ=UTC '" PYTHON_PROGRAM "' '" KIV_SOURCE_DIR
                   "/tests/export/check_exports.py' '" KIVDB_PROGRAM "' hostile MIX A C >out 2>err")
                      .c_str());
  EXPECT_EQ(WEXITSTATUS(status), 0) << read_file(dir_ / "out") << read_file(dir_ / "err");
}

}  // namespace
}  // namespace kiv::test
