#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "kiv/options.h"
#include "kiv/terminate.h"
#include "support/run_trace.h"
#include "support/trace_builder.h"
#include "tables/csv_filebuf.h"
#include "trace/diagnostics.h"

namespace kiv {
namespace {

namespace fs = std::filesystem;
using test::run_kiv;
using test::run_result;
using test::trace;

constexpr const char* dashes = "------------------------------------------------\n";
constexpr const char* usage_text =
    "-H <header file> header file to use to read in kiv trace\n"
    "-E <error file> file place debug output into (redirects stderr/cerr)\n"
    "-vV prints version\n"
    "-d  debug level 1\n"
    "-D  debug level 2\n"
    "-sd <sep> record separation character to used in the csv output files ','\n"
    "-sf <sep> seperation between object and function (default '@')\n"
    "-R <directory> directory containing kiv trace files\n"
    "-T \"description of run\"\n";

TEST(Options, ValuesAreTheNextArgumentWhateverItLooksLike) {
  const std::vector<const char*> all = {"-Hx", "-R",  "-R", "dir", "-T", "",    "-M",  "3", "-sd",
                                        ",",   "-sf", "@+", "-Dx", "-d", "-sx", "-sd", "",  "-sf"};
  const command_line line = parse_command_line(all);
  EXPECT_EQ(line.what, command::run);
  EXPECT_EQ(line.options.header_file, "-R");
  EXPECT_EQ(line.options.directory, "dir");
  EXPECT_EQ(line.options.description, "");
  EXPECT_EQ(line.options.size_limit, -2045);
  EXPECT_EQ(line.options.data_sep, ',');
  EXPECT_EQ(line.options.fun_sep, '@');
  EXPECT_EQ(line.options.debug_level, 1);

  const run_options none = parse_command_line(std::vector<const char*>{"-M"}).options;
  EXPECT_EQ(none.description, "change this to a meaningful description");
  EXPECT_EQ(none.size_limit, 1 << 30);
}

TEST(Options, SizeLimitWrapsAt32Bits) {
  const std::pair<const char*, std::int32_t> cases[] = {
      {"10K", 8192},      {"3", -2045},
      {"", -2048},        {"abc", -2048},
      {"2M", 2095104},    {"1G", 1073739776},
      {"2G", 2147481600}, {"4G", -2048},
      {"1KM", 1046528},   {"2147483648", 2147481600},
      {"-1", -2049},      {" 7 xG", -1073743872},
  };
  for (const auto& [text, limit] : cases) EXPECT_EQ(parse_size_limit(text), limit) << text;
}

TEST(Driver, TheFirstArgumentThatDecidesEndsTheReading) {
  enum prints { nothing, usage = 1, banner = 2, both = 3 };
  const struct {
    std::vector<std::string> args;
    prints what;
    int status = 0;
  } cases[] = {
      {{}, nothing},
      {{"foo"}, both},
      {{""}, both},
      {{"-x"}, usage},
      {{"-"}, usage},
      {{"-d", "foo", "-v"}, both},
      {{"-H", "a", "b"}, both},
      {{"-d", "-V"}, banner},
      {{"-v", "-H", "a"}, banner},
      {{"-x", "-E"}, usage},
      {{"-sx", ","}, both},
      {{"-R", "no such directory"}, nothing},
      {{"-H"}, nothing},
      {{"-d", "-E"}, nothing, 1},
      {{"-E", "-x", "-s"}, nothing},
  };
  const test::temp_dir dir;
  for (const auto& c : cases) {
    const run_result result = run_kiv(dir.path(), c.args);
    SCOPED_TRACE(::testing::PrintToString(c.args));
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.out, c.what & usage ? usage_text : "");
    EXPECT_EQ(result.err.starts_with(dashes) && result.err.ends_with(dashes),
              (c.what & banner) != 0);
    EXPECT_EQ(result.err.empty(), !(c.what & banner)) << result.err;
  }
  EXPECT_EQ(run_kiv(dir.path(), {"-x"}, KIV_PROGRAM).out, usage_text);
}

TEST(Driver, DirectoryRunTakesRegularFilesThenTheSingleRunStartsAnew) {
  const test::temp_dir dir;
  ASSERT_TRUE(trace().runid("R1").write(dir / "in"));
  const fs::path in = dir / "in";
  const fs::path header = in / trace().header_name();
  fs::create_directory(in / "sub.kivhdr");
  fs::create_symlink("nowhere", in / "broken.kivhdr");
  fs::create_symlink(header, in / "link.kivhdr.old");
  ASSERT_TRUE(test::write_file(in / "other.kivdat", "x"));
  ASSERT_TRUE(trace().runid("R2").pid(9).base_name("single").write(dir.path()));

  const run_result result =
      run_kiv(dir.path(), {"-H", trace().pid(9).base_name("single").header_name(), "-R", "in"});
  EXPECT_EQ(result.status, 0);
  const std::string file_line = "csv_file: in/kiv.R1.memory.1.csv ";
  std::size_t processed = 0;
  for (std::size_t at = 0; (at = result.out.find("Processing: ", at)) != std::string::npos; ++at) {
    ++processed;
  }
  EXPECT_EQ(processed, 2U) << result.out;
  const std::size_t first = result.out.find(file_line + "1\n");
  const std::size_t second = result.out.find(file_line + "0\n");
  const std::size_t single = result.out.find("csv_file: ./kiv.R2.memory.1.csv 1\n");
  EXPECT_LT(first, second);
  EXPECT_LT(second, single);
  ASSERT_NE(single, std::string::npos);
  for (const char* script : {"kiv.R1.sql", "kiv.R2.sql"}) {
    const std::string text = result.files.at(script);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 7 + 18) << script;
  }
}

TEST(Driver, TurnedAwayTracesHaveCreatedTheirFirstTables) {
  const struct {
    const char* element;
    const char* value;
    const char* message;
  } cases[] = {
      {"version", "2", "header version \" 2 not supported \n"},
      {"filetype", "asc", ">>Processing failed...\n"},
      {"version", "-1", ""},
  };
  for (const auto& c : cases) {
    const test::temp_dir dir;
    ASSERT_TRUE(trace().runid("R").attr(c.element, c.value).write(dir / "in"));
    const run_result result = run_kiv(dir.path(), {"-R", "in"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.out.ends_with(c.message)) << result.out;
    EXPECT_EQ(result.files.contains("kiv.R.flow.1.csv"), true);
    EXPECT_EQ(result.files.contains("kiv.R.runs.1.csv"), *c.message == '\0');
  }
}

TEST(Driver, AFileSizeLimitIsAFailedWriteAndTheRunGoesOn) {
  const test::temp_dir dir;
  trace t;
  t.runid("R").reserve(1, "oic:x");
  for (std::uint32_t i = 1; i <= 9; ++i) t.malloc_wf(1, 0, std::int64_t{16} * i, 8, 16);
  ASSERT_TRUE(t.write(dir.path()));
  const std::string command = "cd " + dir.path() + " && (ulimit -f 4; " KIV_PROGRAM " -H " +
                              t.header_name() + ") >out 2>err";
  EXPECT_EQ(std::system(command.c_str()), 0);
  const std::string err = test::read_file(dir / "err");
  EXPECT_NE(err.find("\ncannot write ./kiv.R.memory.1.csv\n"), std::string::npos) << err;
  EXPECT_NE(test::read_file(dir / "kiv.R.runs.1.csv"), "");
}

TEST(Driver, TheTerminateHandlerSavesWhatWasWritten) {
  const test::temp_dir dir;
  const auto die = [&dir] {
    diagnostics silent;
    open_files files;
    const saved_on_termination saved(files);
    csv_filebuf file(files, silent);
    file.open(dir / "table", true);
    file.write("row\n");
    kiv_terminate_handler();
  };
  EXPECT_EXIT(die(), ::testing::KilledBySignal(SIGABRT),
              "^Some error occurred: debug and break at kiv_terminate_handler\n$");
  EXPECT_EQ(test::read_file(dir / "table"), "row\n");
}

}  // namespace
}  // namespace kiv
