#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "report/json_reader.h"
#include "support/run_trace.h"

// The program as its users and their scripts call it.
namespace kiv::test {
namespace {

struct outcome {
  int status;
  std::string out, err;
};

// A directory with traces; every run has two of them.
class Kivdb : public ::testing::Test {
 protected:
  outcome kivdb(const std::string& arguments, const char* out = "out") {
    const int status = std::system(("cd '" + dir_.path() + "' && TZ=UTC '" KIVDB_PROGRAM "' " +
                                    arguments + " >" + out + " 2>err </dev/null")
                                       .c_str());
    return {WEXITSTATUS(status), read_file(dir_ / "out"), read_file(dir_ / "err")};
  }

  // A trace that makes a block of `kept` bytes, which leaks, and one of 10, which is freed.
  static trace leaking(std::string_view run, std::int64_t pid, std::uint32_t kept) {
    trace t;
    t.runid(run).pid(pid).proc(7, "server").reserve(1, "oic:core");
    t.malloc_wf(1, 0, 0x1000, kept, kept + 8).malloc_wf(1, 0, 0x2000, 10, 16).free(1, 0, 0x2000);
    return t;
  }

  void write(const std::string& directory, const trace& t) {
    ASSERT_TRUE(t.write(dir_ / directory));
  }

  // Run A leaks 100 + 20 bytes, B 150 + 20; C like B, but its last data file is cut short.
  void write_runs() {
    for (const auto& [run, kept] : {std::pair("A", 100u), {"B", 150u}, {"C", 150u}}) {
      write(run, leaking(run, 41, kept));
      write(run, leaking(run, 42, 20));
    }
    for (const auto& item : std::filesystem::directory_iterator(dir_ / "C")) {
      if (item.path().extension() != ".kivdat") continue;
      std::filesystem::resize_file(item.path(), item.file_size() - 3);
    }
  }

  temp_dir dir_;
};

TEST_F(Kivdb, ReportTreeAndDiffStraightFromTraces) {
  write_runs();
  auto run = kivdb("report A --json --by id --of leaked");
  ASSERT_EQ(run.status, 0) << run.err;
  auto json = read_json(run.out);
  ASSERT_EQ(json["runs"].size(), 1u);
  ASSERT_EQ(json["runs"][0]["traces"].size(), 2u);
  EXPECT_EQ(json["runs"][0]["traces"][0]["pid"].number(), 41) << "in the order of the headers";
  EXPECT_EQ(json["runs"][0]["lists"][0]["total"]["bytes"].number(), 120);
  EXPECT_EQ(json["runs"][0]["lists"][0]["total"]["blocks"].number(), 2);

  run = kivdb("tree A --of allocated --json");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(read_json(run.out)["total"]["bytes"].number(), 140);

  run = kivdb("diff A B --by id --json --fail-above leaked=49");
  EXPECT_EQ(run.status, 3) << run.err;
  json = read_json(run.out);
  EXPECT_EQ(json["total"]["change"].number(), 50);
  EXPECT_EQ(json["limits"][0]["passed"].scalar, "true");
}

TEST_F(Kivdb, ADatabaseAnswersAsItsTracesDo) {
  write_runs();
  auto run = kivdb("import A B -o t.db");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  for (const char* command :
       {"report %s --json", "report %s --csv --by function,path,query", "report %s",
        "tree %s --json", "tree %s --of live", "export %s --format collapsed --of allocated --ids",
        "export %s --format speedscope", "export %s --format pprof"}) {
    std::string of_trace = command, of_database = command;
    of_trace.replace(of_trace.find("%s"), 2, "A");
    of_database.replace(of_database.find("%s"), 2, "t.db --run A");
    EXPECT_EQ(kivdb(of_database).out, kivdb(of_trace).out) << command;
  }
  EXPECT_EQ(kivdb("diff t.db A B --by line --csv").out, kivdb("diff A B --by line --csv").out);
  EXPECT_NE(kivdb("report t.db").out.find("Run 'B'"), std::string::npos) << "the last";
  EXPECT_EQ(read_json(kivdb("trend t.db --json").out)["runs"].size(), 2u);
  EXPECT_EQ(read_json(kivdb("trend t.db --json --last 1").out)["runs"].size(), 1u);

  run = kivdb("import A -o t.db");
  EXPECT_NE(run.out.find("replaced"), std::string::npos) << run.out;
  EXPECT_EQ(kivdb("import A -o t.db --as 'it''s 1/2'").status, 0);
  EXPECT_EQ(read_json(kivdb("runs t.db --json").out).size(), 3u);
  ASSERT_EQ(kivdb("import A -o t.db --as L --label release=4.2 --label 'a b=x=1'").status, 0);
  EXPECT_EQ(read_json(kivdb("runs t.db --json").out)[3]["labels"].scalar, "a b=x=1, release=4.2");
  EXPECT_EQ(kivdb("show t.db labels --csv").out, "run,key,value\nL,a b,x=1\nL,release,4.2\n");
  EXPECT_EQ(kivdb("forget t.db B A L").status, 0);
  EXPECT_EQ(read_json(kivdb("runs t.db --json").out)[0]["run"].scalar, "its 1/2");
  EXPECT_EQ(kivdb("sql t.db 'SELECT 1 AS one, NULL AS none' --csv").out, "one,none\n1,\n");
}

TEST_F(Kivdb, AFleetIsAskedByReleaseHostAndName) {
  write_runs();
  ASSERT_EQ(kivdb("import A -o t.db --label release=1").status, 0);
  ASSERT_EQ(kivdb("import B -o t.db --label release=2").status, 0);
  ASSERT_EQ(kivdb("import C -o t.db").status, 0);
  auto run = kivdb("fleet t.db --json --by id --leaked-above 120 --runs 2 --beyond 1.25");
  ASSERT_EQ(run.status, 0) << run.err;
  auto json = read_json(run.out);
  ASSERT_EQ(json["summary"].size(), 3u);
  EXPECT_EQ(json["summary"][1]["release"].scalar, "2");
  EXPECT_EQ(json["summary"][1]["median_leaked_bytes"].number(), 170);
  EXPECT_EQ(json["summary"][2]["release"].scalar, "");
  EXPECT_EQ(json["summary"][2]["incomplete"].number(), 1);
  EXPECT_EQ(json["hosts"].size(), 3u);
  EXPECT_EQ(json["outliers"].size(), 0u);
  EXPECT_EQ(json["first_leaks"][0]["run"].scalar, "B");
  EXPECT_EQ(json["first_leaks"][0]["leaked_bytes"].number(), 170);
  EXPECT_EQ(json["label"].scalar, "release");

  run = kivdb("fleet t.db --csv --only growth --only summary --top 1");
  EXPECT_TRUE(run.out.starts_with("kind,program,release,runs,incomplete,median_peak_bytes"))
      << run.out;
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 2) << run.out;
  run = kivdb("fleet t.db --only summary");
  EXPECT_NE(run.out.find("3 runs of 1 program on 1 host\n1 run NOT COMPLETE"), std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("(none)"), std::string::npos) << run.out;
  EXPECT_EQ(run.out.find("Hosts"), std::string::npos) << run.out;
}

TEST_F(Kivdb, OnlyCompleteRunsPassAGate) {
  write_runs();
  const struct {
    const char* arguments;
    int status;
  } cases[] = {
      {"diff A B", 0},
      {"diff A B --fail-above leaked=50", 0},
      {"diff A B --fail-above leaked=1K --fail-above leaked=10%", 3},
      {"diff A B --fail-above leaked=50 --process 7", 0},
      {"diff B A --fail-above leaked=0", 0},
      {"diff A C", 0},
      {"diff A C --fail-above leaked=1G", 4},
      {"diff C A --fail-above leaked=1G", 4},
      {"diff A C --fail-above leaked=1G --allow-incomplete", 0},
      {"diff A C --fail-above leaked=0 --allow-incomplete", 3},
  };
  for (const auto& [arguments, status] : cases) {
    const auto run = kivdb(arguments);
    EXPECT_EQ(run.status, status) << arguments << ": " << run.err;
    EXPECT_EQ(run.err.empty(), status == 0) << arguments << ": " << run.err;
  }
  EXPECT_NE(kivdb("report C").out.find("NOT COMPLETE"), std::string::npos);
}

TEST_F(Kivdb, WrongUsageIsStatus1) {
  write_runs();
  ASSERT_EQ(kivdb("import A B -o t.db").status, 0);
  for (const char* arguments : {"",
                                "nonsense",
                                "report",
                                "report ''",
                                "report A --run ''",
                                "report A --run=",
                                "report A --by ''",
                                "report A --by size",
                                "report A --by line,",
                                "report A --by ,",
                                "report A --of peak,size",
                                "report A --top 0",
                                "report A --top x",
                                "report A --top ''",
                                "report A --focus ''",
                                "report A --focus '('",
                                "report A --csv --json",
                                "tree A --min-share 101",
                                "tree A --of ''",
                                "diff A",
                                "diff A B C D",
                                "diff A B --fail-above ''",
                                "diff A B --fail-above 64K",
                                "diff A B --fail-above leaked",
                                "diff A B --fail-above leaked=",
                                "diff A B --fail-above size=1",
                                "diff A B --fail-above leaked=-1",
                                "export A",
                                "export A --format svg",
                                "export A --format ''",
                                "export A --format collapsed",
                                "export A --format collapsed --of leaked,peak",
                                "export A --format collapsed --of leaked --of peak",
                                "export A --format collapsed --of size",
                                "export A --format pprof --blocks",
                                "export A --format pprof --ids",
                                "export A --format pprof -o ''",
                                "export A --format pprof --run ''",
                                "export t.db --format pprof -o t.db",
                                "export t.db --format pprof -o ./A/../t.db",
                                "html A",
                                "html A -o ''",
                                "html A B C D -o p.html",
                                "html A B --run A -o p.html",
                                "html t.db A B --run A -o p.html",
                                "html A --run A --run B --run C -o p.html",
                                "html A --focus '(' -o p.html",
                                "import A",
                                "import A -o ''",
                                "import A -o u.db --as ''",
                                "import A B -o u.db --as X",
                                "import A -o u.db --label ''",
                                "import A -o u.db --label release",
                                "import A -o u.db --label =4.2",
                                "import A -o u.db --label release=",
                                "import A -o u.db --label a=1 --label b=2 --label a=3",
                                "trend t.db --last 0",
                                "fleet",
                                "fleet t.db --label ''",
                                "fleet t.db --by path",
                                "fleet t.db --of size",
                                "fleet t.db --beyond 0.5",
                                "fleet t.db --beyond two",
                                "fleet t.db --leaked-above 1T",
                                "fleet t.db --runs 1",
                                "fleet t.db --only nothing",
                                "forget t.db",
                                "show t.db",
                                "sql t.db",
                                "sql t.db ''",
                                "sql t.db 'SELEC'"}) {
    const auto run = kivdb(arguments);
    EXPECT_EQ(run.status, 1) << arguments << ": " << run.err;
    EXPECT_FALSE(run.err.empty()) << arguments;
  }
  for (const char* left : {"u.db", "p.html"}) {
    EXPECT_FALSE(std::filesystem::exists(dir_ / left)) << left;
  }
}

TEST_F(Kivdb, WhatCannotBeReadIsStatus2AndNamed) {
  write_runs();
  ASSERT_EQ(kivdb("import A -o t.db").status, 0);
  std::ofstream(dir_ / "text") << "no header and no database";
  std::filesystem::create_directory(dir_ / "empty");
  std::filesystem::copy(dir_ / "A", dir_ / "again");
  const struct {
    const char *arguments, *message;
  } cases[] = {
      {"report nowhere", "nowhere: No such file"},
      {"report text", "text"},
      {"report empty", "empty: no header file"},
      {"report A --run B", "no run 'B'"},
      {"report t.db --run B", "'B'"},
      {"export A --format pprof -o nowhere/x", "nowhere/x: No such file"},
      {"export A --format pprof -o B", "B: Is a directory"},
      {"export A --format pprof -o /dev/full", "/dev/full: No space left"},
      {"export A --format pprof --process nobody -o x", "no process 'nobody'"},
      {"report A --process nobody", "no process 'nobody'"},
      {"diff A B --process nobody", "'nobody'"},
      {"diff t.db A NOPE", "'NOPE'"},
      {"show t.db by_line --run NOPE", "'NOPE'"},
      {"show t.db nothing", "nothing"},
      {"show text by_line", "text: "},
      {"trend A", "A: "},
      {"fleet A", "A: "},
      {"fleet nowhere.db", "nowhere.db: "},
      {"runs nowhere.db", "nowhere.db: "},
      {"forget t.db NOPE", "'NOPE'"},
      {"forget nowhere.db A", "nowhere.db: "},
      {"import A A -o u.db", "given twice"},
      {"import A A/kiv.41.kivhdr -o u.db", "given twice"},
      {"import A again -o u.db", "a second trace of run 'A' and process 41"},
      {"import A -o nowhere/u.db", "nowhere/u.db: "},
      {"html nowhere -o p.html", "nowhere: No such file"},
      {"html A --process nobody -o p.html", "no process 'nobody'"},
      {"html A B --process nobody -o p.html", "neither run has a process 'nobody'"},
      {"html A -o nowhere/p.html", "nowhere/p.html: No such file"},
      {"html A -o empty", "empty: Is a directory"},
      {"html A -o /dev/full", "/dev/full: No space left"},
      {"html A -o t.db", "t.db: holds runs"},
      {"html A -o A/kiv.41.000.kivdat", "kiv.41.000.kivdat: holds runs"},
  };
  for (const auto& [arguments, message] : cases) {
    const auto run = kivdb(arguments);
    EXPECT_EQ(run.status, 2) << arguments << ": " << run.err;
    EXPECT_NE(run.err.find(message), std::string::npos) << arguments << ": " << run.err;
  }
  EXPECT_EQ(kivdb("report A --json", "/dev/full").status, 2);
  EXPECT_NE(read_file(dir_ / "err").find("could not be written"), std::string::npos);
  EXPECT_EQ(kivdb("export A --format pprof", "/dev/full").status, 2);
  for (const char* left : {"x", "u.db", "nowhere.db", "text-wal", "p.html"}) {
    EXPECT_FALSE(std::filesystem::exists(dir_ / left)) << left;
  }
}

// What stands in a page for its scripts.
json_value data_of(const std::string& page) {
  const std::string begin = R"(<script type="application/json" id="kiv-report">)";
  const std::size_t at = page.find(begin);
  if (at == std::string::npos) return {};
  const std::size_t from = at + begin.size();
  return read_json(page.substr(from, page.find("</script>", from) - from));
}

// A value in one form, whatever blanks and escapes it was written with.
std::string canonical(const json_value& value) {
  std::string text = value.scalar;
  for (std::size_t i = 0; i < value.size(); ++i) {
    text +=
        (i < value.keys.size() ? "," + value.keys[i] + ":" : ",") + canonical(value.elements[i]);
  }
  return "[" + text + "]";
}

TEST_F(Kivdb, APageHoldsWhatTheReportSays) {
  for (const std::string sample : {"MIX", "NEXT", "SQL1"}) {
    const std::string source = KIV_SOURCE_DIR "/samples/" + sample;
    const auto report = kivdb("report " + source +
                              " --json --by id,color,line,function,path,process,query"
                              " --of leaked,peak,live,allocated,temporary");
    const auto run = kivdb("html " + source + " -o p.html");
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string page = read_file(dir_ / "p.html");
    const auto runs = canonical(data_of(page)["runs"]);
    EXPECT_GT(runs.size(), 1000u);
    EXPECT_EQ(runs, canonical(read_json(report.out)["runs"])) << sample;
    EXPECT_NE(page.find("<title>" + sample + " "), std::string::npos);
    for (const char* mark : {"@TITLE@", "@DATA@", "@STYLE@", "@D3@", "@SCRIPT@", "@POLICY@"}) {
      EXPECT_EQ(page.find(mark), std::string::npos) << mark;
    }
  }
}

TEST_F(Kivdb, APageComparesRunsOfSourcesOrOfADatabase) {
  write_runs();
  ASSERT_EQ(kivdb("import A B -o t.db").status, 0);
  std::string first;
  for (const char* runs : {"A B", "t.db A B", "t.db --run A --run B", "A B --run A --run B"}) {
    const auto run = kivdb(std::string("html -o p.html ") + runs);
    ASSERT_EQ(run.status, 0) << runs << ": " << run.err;
    const std::string page = read_file(dir_ / "p.html");
    const auto data = data_of(page);
    EXPECT_EQ(data["runs"][0]["run"].scalar, "A") << runs;
    EXPECT_EQ(data["runs"][1]["run"].scalar, "B") << runs;
    EXPECT_EQ(data["page"]["runs"].size(), 2u) << runs;
    if (first.empty()) first = page;
    EXPECT_EQ(page, first) << runs;
  }
}

TEST_F(Kivdb, APageIsReplacedWholeOrNotAtAll) {
  namespace fs = std::filesystem;
  write_runs();
  std::ofstream(dir_ / "p.html") << "old";
  fs::permissions(dir_ / "p.html", fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("p.html", dir_ / "link.html");
  const auto count = [&] { return std::distance(fs::directory_iterator(dir_.path()), {}); };
  ASSERT_EQ(kivdb("runs nowhere.db").status, 2);  // the files of the outputs are there from now on
  const auto before = count();
  const int status = std::system(("cd '" + dir_.path() + "' && trap '' XFSZ && ulimit -f 100 && '" +
                                  KIVDB_PROGRAM "' html A -o p.html >out 2>err")
                                     .c_str());
  EXPECT_EQ(WEXITSTATUS(status), 2);
  EXPECT_NE(read_file(dir_ / "err").find("p.html: File too large"), std::string::npos);
  EXPECT_EQ(read_file(dir_ / "p.html"), "old");
  EXPECT_EQ(count(), before) << "nothing is left beside it";
  EXPECT_EQ(kivdb("html A -o link.html").status, 0);
  EXPECT_EQ(data_of(read_file(dir_ / "p.html"))["runs"].size(), 1u);
  EXPECT_TRUE(fs::is_symlink(dir_ / "link.html"));
  EXPECT_EQ(fs::status(dir_ / "p.html").permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(count(), before);
}

TEST_F(Kivdb, OfSeveralHeadersOneThatCannotBeReadIsALoss) {
  write_runs();
  std::ofstream(dir_ / "A/kiv.43.kivhdr") << "no header";
  const auto run = kivdb("report A --json");
  EXPECT_EQ(run.status, 0) << run.err;
  const auto json = read_json(run.out);
  EXPECT_EQ(json["runs"][0]["traces"][0]["complete"].scalar, "false");
  EXPECT_EQ(json["runs"][0]["traces"][0]["losses"][0]["what"].scalar, "unreadable header");
  EXPECT_EQ(kivdb("diff A B --fail-above leaked=1G").status, 4);
}

TEST_F(Kivdb, AnExportIsWrittenWholeOrNotAtAll) {
  write_runs();
  const std::string command = "export A --format speedscope";
  const auto printed = kivdb(command);
  ASSERT_EQ(printed.status, 0) << printed.err;
  EXPECT_EQ(kivdb(command + " -o -").out, printed.out);
  std::ofstream(dir_ / "old") << "what stood there before";
  std::filesystem::permissions(dir_ / "old", std::filesystem::perms(0600));
  std::filesystem::create_symlink("old", dir_ / "link");
  const auto files = [&] {
    return std::distance(std::filesystem::directory_iterator(dir_.path()),
                         std::filesystem::directory_iterator());
  };
  const auto before = files();
  // A limit on the size of files stands for a full disk.
  const auto full = std::system(("cd '" + dir_.path() +
                                 "' && trap '' XFSZ && ulimit -f 0 && '" KIVDB_PROGRAM "' " +
                                 command + " -o link >/dev/null 2>&1")
                                    .c_str());
  EXPECT_EQ(WEXITSTATUS(full), 2);
  EXPECT_EQ(read_file(dir_ / "old"), "what stood there before");
  const auto run = kivdb(command + " -o link");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out + run.err, "");
  EXPECT_EQ(read_file(dir_ / "old"), printed.out);
  EXPECT_TRUE(std::filesystem::is_symlink(dir_ / "link"));
  EXPECT_EQ(std::filesystem::status(dir_ / "old").permissions(), std::filesystem::perms(0600));
  EXPECT_EQ(files(), before) << "nothing is left beside";
}

TEST_F(Kivdb, AnExportOfAnIncompleteRunSaysSo) {
  write_runs();
  for (const std::string format : {"collapsed --of leaked", "speedscope", "pprof"}) {
    auto run = kivdb("export C --format " + format);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("run 'C', process 41: not complete: "), std::string::npos) << run.err;
    EXPECT_EQ(kivdb("export A --format " + format).err, "");
  }
}

// The names of a trace are any bytes, and a run of which only tables are there has no call paths.
TEST_F(Kivdb, ExportsAddUpAsTheReportDoes) {
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

TEST_F(Kivdb, HelpHasAnExampleForEveryCommand) {
  for (const std::string command :
       {"import", "report", "tree", "diff", "html", "export", "trend", "fleet", "runs", "forget",
        "show", "views", "sql", "schema", "setup", "prune"}) {
    const auto run = kivdb(command + " --help");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("Example: kivdb " + command), std::string::npos) << run.out;
    const char* output = command == "export"   ? "--format"
                         : command == "schema" ? "--cluster"
                                               : "--json";
    EXPECT_NE(run.out.find(output), std::string::npos) << command;
  }
  EXPECT_EQ(kivdb("--version").out.substr(0, 6), "kivdb ");
}

}  // namespace
}  // namespace kiv::test
