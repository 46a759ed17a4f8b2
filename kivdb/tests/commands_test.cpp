#include <sys/wait.h>

#include <cstdlib>

#include "human.h"
#include "printable.h"
#include "result_table.h"
#include "support_db.h"

namespace kiv::db::test {
namespace {

struct outcome {
  int status;
  std::string out, err;
};

class Commands : public db_test {
 protected:
  // Runs kivdb in the test's directory.
  outcome kivdb(const std::string& args) {
    const int status = std::system(
        ("cd '" + dir_.path() + "' && " KIVDB_PROGRAM " " + args + " >out 2>err </dev/null")
            .c_str());
    return {WEXITSTATUS(status), kiv::test::read_file(dir_ / "out"),
            kiv::test::read_file(dir_ / "err")};
  }

  // Two runs: id "cache" holds 100 bytes in A and 150 in B, id "new" appears in B with 10.
  void two_runs() {
    const std::string time = "2023-11-14 22:13:20.005";
    const auto make = [&](const std::string& run, std::vector<std::pair<int, int>> blocks) {
      std::string memory, rest, malids;
      for (const auto& c : find_csv_table("memory")->columns.subspan(28)) {
        rest += ";" + (c.label.empty() ? "0" : std::string(c.label));
      }
      int rec = 0;
      for (const auto& [id, size] : blocks) {
        const std::string n = std::to_string(++rec), s = std::to_string(size);
        memory += run + ";1;" + time + ";a;" + n + ";0;0;0;0;0;0;0;0;0;;0;;0;8;" +
                  std::to_string(id) + ";0;4096;" + s + ";" + s + ";" + s + ";" + s + ";0;0" +
                  rest + "\n";
      }
      // The ids have other numbers in each run.
      const std::string shift = run == "A" ? "" : "1";
      malids = run + ";1;" + shift + "1;0;cache;general;;;0;" + time + ";" + time + ";0;1\n" + run +
               ";1;" + shift + "2;0;new;general;;;0;" + time + ";" + time + ";0;1\n";
      write_run(run, {{"memory.1", memory},
                      {"malid.1", malids},
                      {"runs.1", run + ";1;" + time + ";" + time + ";p;e;a;h;u;d;1;2;3\n"}});
    };
    make("A", {{1, 60}, {1, 40}});
    make("B", {{11, 150}, {12, 10}});
  }
};

TEST_F(Commands, ImportReportShowAndViews) {
  analyse("MIX");
  auto run = kivdb("import MIX -o t.db");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out.substr(0, 24), "run MIX: 504 rows from 1");
  EXPECT_EQ(run.err, "");

  run = kivdb("report t.db --top 3");
  EXPECT_EQ(run.status, 0) << run.err;
  for (const char* text : {"Run MIX, process 4101: orderd",
                           "10.1 KiB (10.5 KiB with rounding) at "
                           "record 143",
                           "qdb orders.db", "caller and callee"}) {
    EXPECT_NE(run.out.find(text), std::string::npos) << text << "\n" << run.out;
  }
  EXPECT_EQ(run.out.find('\x1b'), std::string::npos);
  std::size_t longest = 0;
  for (std::size_t at = 0, end; (end = run.out.find('\n', at)) != std::string::npos; at = end + 1) {
    longest = std::max(longest, display_width(run.out.substr(at, end - at)));
  }
  EXPECT_LE(longest, 100u);

  run = kivdb("report t.db --by id --top 1 --json");
  EXPECT_NE(run.out.find("\"by_id\": [\n  {\"live_bytes\": 1536, \"live_blocks\": 3, "),
            std::string::npos)
      << run.out;
  run = kivdb("show t.db lost --csv");
  EXPECT_EQ(run.out,
            "run_id,main_pid,frees_without_block,resizes_without_block,blocks_of_unknown_ids,"
            "blocks_of_unknown_lines,replayed_to_its_end\nMIX,4101,0,0,0,0,1\n");
  run = kivdb("show t.db block --top 2");
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 4) << run.out;
  EXPECT_NE(kivdb("views").out.find("heap_growth"), std::string::npos);
}

TEST_F(Commands, DiffComparesByNameAndWatchesALimit) {
  two_runs();
  ASSERT_EQ(kivdb("import . -o t.db").status, 0);
  const auto csv = kivdb("diff t.db A B --csv");
  EXPECT_EQ(csv.status, 0) << csv.err;
  EXPECT_EQ(csv.out, "bytes_a,bytes_b,growth,id_name\n100,150,50,cache\n0,10,10,new\n");
  const struct {
    const char* args;
    int status;
  } cases[] = {
      {"A B --fail-above 60", 0},   // the sum grew by 60, not by more
      {"A B --fail-above 59", 3},   // the sum
      {"A B --fail-above 49", 3},   // the cache alone
      {"A B --fail-above 1K", 0},   //
      {"A B --fail-above 50%", 3},  // what is new grew without measure
      {"B A --fail-above 0", 0},    // shrank
      {"A B --of allocated --by line --fail-above 60%", 0},
      {"A B --of allocated --by line --fail-above 59%", 3},
      {"A B --fail-above x", 1},   //
      {"A B --fail-above -1", 1},  //
      {"A C", 2},                  // no such run
  };
  for (const auto& c : cases) {
    const auto run = kivdb(std::string("diff t.db ") + c.args);
    EXPECT_EQ(run.status, c.status) << c.args << ": " << run.err;
    EXPECT_EQ(run.err.empty(), c.status == 0) << run.err;
  }
}

TEST_F(Commands, ErrorsAreClear) {
  write_file(dir_ / "text", "no database here, only some text that is long enough");
  const struct {
    const char* args;
    int status;
    const char* message;
  } cases[] = {
      {"", 1, "a command is missing"},
      {"import", 1, "source"},
      {"import nowhere", 2, "nowhere: no such script or directory"},
      {"import . -o t.db", 2, "nothing to import"},
      {"import --sd ';;' .", 1, "one character"},
      {"report text", 2, "text: file is not a database"},
      {"report missing.db", 2, "missing.db: unable to open database file"},
      {"report t.db --by size", 1, "--by"},
      {"show text nothing", 2, "text"},
      {"nonsense", 1, "nonsense"},
  };
  for (const auto& c : cases) {
    const auto run = kivdb(c.args);
    EXPECT_EQ(run.status, c.status) << c.args;
    EXPECT_NE((run.out + run.err).find(c.message), std::string::npos) << c.args << ": " << run.err;
  }
  for (const char* command : {"import", "report", "show", "diff", "views"}) {
    const auto run = kivdb(std::string(command) + " --help");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("Example: kivdb " + std::string(command)), std::string::npos);
  }
}

TEST(Human, NumbersAndTimes) {
  EXPECT_EQ(grouped(-1234567), "-1,234,567");
  EXPECT_EQ(grouped(999), "999");
  EXPECT_EQ(grouped(-123), "-123");
  EXPECT_EQ(human_bytes(1023), "1023 B");
  EXPECT_EQ(human_bytes(-1536), "-1.5 KiB");
  EXPECT_EQ(human_bytes((1 << 20) - 1), "1.0 MiB");
  EXPECT_EQ(human_bytes(INT64_MIN), "-8.0 EiB");
  EXPECT_EQ(human_duration(3'723'450), "1h 02m 03.450s");
  EXPECT_EQ(human_duration(-61'000), "-1m 01.000s");
  EXPECT_EQ(milliseconds_between("2023-12-31 23:59:59.999", "2024-01-01 00:00:01.000"), 1001);
  EXPECT_EQ(milliseconds_between("2024-02-28 00:00:00.000", "2024-03-01 00:00:00.000"),
            2 * 86'400'000);
  EXPECT_EQ(milliseconds_between("", "2024-01-01 00:00:01.000"), std::nullopt);
  EXPECT_EQ(parse_limit("1.5K")->value, 1536);
  EXPECT_TRUE(parse_limit("5%")->percent);
  for (const char* bad : {"", "K", "5%%", "-1", "nan", "1e999", "5 K"}) {
    EXPECT_FALSE(parse_limit(bad)) << bad;
  }
}

TEST(Printable, NothingReachesTheTerminalUnchecked) {
  EXPECT_EQ(printable("a\x1b[31m\n\x7f"), "a?[31m??");
  EXPECT_EQ(printable("gr\xc3\xbc\xc3\x9f\xfc \xed\xa0\x80 \xc0\xaf \xc2\x9b"), "grüß? ??? ?? ?");
  EXPECT_EQ(shortened("grüße", 4), "grü…");
  EXPECT_EQ(shortened("grüße", 5), "grüße");
  EXPECT_EQ(json_text("\"\\\n\xff"), "\"\\\"\\\\\\u000a\\ufffd\"");
}

}  // namespace
}  // namespace kiv::db::test
