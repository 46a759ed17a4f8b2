#include <algorithm>
#include <fstream>

#include "kivdb/kivdb_program.h"
#include "report/json_reader.h"

namespace kiv::test {
namespace {

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

// It is loaded when a server is asked, and only then.
TEST_F(Kivdb, WithoutTheLibraryForServersOnlyThoseCannotBeAsked) {
  write_runs();
  std::ofstream(dir_ / "libcurl.so.4") << "no library";
  const std::string there = "export LD_LIBRARY_PATH=.";
  const auto asked = kivdb_after(there, "runs clickhouse://127.0.0.1:1/kiv");
  EXPECT_EQ(asked.status, 2);
  EXPECT_NE(asked.err.find("libcurl.so.4"), std::string::npos) << asked.err;
  EXPECT_EQ(kivdb_after(there, "report A").status, 0);
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
