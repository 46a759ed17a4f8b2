#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "captured.h"
#include "output/csv_file.h"
#include "output/csv_file_sequence.h"
#include "output/sql_script.h"
#include "support/run_trace.h"

namespace kiv {
namespace {

namespace fs = std::filesystem;
using test::captured;
using test::read_file;

// A run's sequence and script in a private directory, with the standard output caught.
class Output : public ::testing::Test {
 protected:
  void start(const std::string& runid, int version = 1) {
    script.set_path(dir.path(), runid, version, true);
  }
  csv_file table(const char* name, const std::string& runid = "R42", bool first = true) {
    return {&sequence, &script, name, dir.path(), runid, first};
  }
  std::string content(const std::string& name) { return read_file(dir / name); }

  const test::temp_dir dir;
  const captured out{std::cout};
  csv_file_sequence sequence{"csv"};
  sql_script script{"sql"};
};

TEST_F(Output, LaterTracesAppendUnannouncedUntilTheySplit) {
  start("R42");
  table("memory").get_stream() << "old\n";
  table("memory").get_stream() << "first\n";  // truncates
  script.set_path(dir.path(), "R42", 7, false);
  {
    csv_file file = table("memory", "R42", false);
    file.get_stream() << "second\n";
    file.add_check(true);
    file.set_max(13);  // what both wrote: the file counts from its size at opening
    file.get_stream() << "third\n";
  }
  script.set_path(dir.path(), "R43", 0, false);
  { csv_file(table("memory", "R43", false)).get_stream() << "fourth\n"; }
  EXPECT_EQ(content("kiv.R42.memory.1.csv"), "first\nsecond\n");
  EXPECT_EQ(content("kiv.R42.memory.2.csv"), "third\n");
  EXPECT_EQ(content("kiv.R43.memory.2.csv"), "fourth\n");
  EXPECT_NE(out.text().find("kiv.R43.memory.2.csv 0\n"), std::string::npos);
}

TEST_F(Output, ScriptStatements) {
  { sql_script("sql").generate_import("memory", 1); }  // never set up: nowhere to write
  {
    sql_script own("sql");
    own.set_path(dir.path(), "R42", 1, true);
    own.generate_import("memory", 1);
    own.generate_import("queryevents", 2);
    own.generate_import("flowdata", 1);
    own.set_path(dir.path(), "R43", 0, false);
    own.generate_import("queries", 10);
  }
  EXPECT_EQ(content("kiv.R42.sql"),
            "USE KIV\nDECLARE @RUNID varchar(10)\nDECLARE @Path varchar(100)\n\n"
            "SET @RUNID = 'R42'\nSET @Path = '$(ScriptDir)\\'\n\n"
            "execute Do_Import_Kiv_Csv_File_Memory @Path, 'R42', 'memory1', 'memory', '1';\n"
            "execute Do_Import_Kiv_Csv_File @Path, 'R42', 'queryevents1', 'queryevents', '2';\n"
            "execute Do_Import_Kiv_Csv_File @Path, 'R42', 'flowdata1', 'flowdata', '1', '<<>>';\n"
            "execute Do_Import_Kiv_Csv_File @Path, 'R43', 'queries0', 'queries', '10', '<<>>';\n");
  EXPECT_FALSE(fs::exists(dir / "kiv.R43.sql"));
}

TEST_F(Output, BufferKeepsEveryByteAndKnowsItsPosition) {
  std::minstd_rand random(3);
  csv_filebuf buffer;
  EXPECT_EQ(buffer.position(), -1);
  ASSERT_TRUE(buffer.open(dir / "bytes", true));
  std::string expected;
  for (const std::size_t size :
       {0UL, 65536UL, 1UL, 65535UL, 65537UL, 200'000UL, 65535UL, 1UL, 1UL}) {
    std::string text(size, '\0');
    for (char& byte : text) byte = static_cast<char>(random());
    EXPECT_EQ(buffer.sputn(text.data(), static_cast<std::streamsize>(size)),
              static_cast<std::streamsize>(size));
    buffer.sputc('\n');
    expected += text + '\n';
    char* place = buffer.claim(2048);
    ASSERT_NE(place, nullptr);
    buffer.add(text.copy(place, 2048));
    expected.append(text, 0, 2048);
    EXPECT_EQ(buffer.position(), static_cast<std::int64_t>(expected.size()));
  }
  csv_filebuf::flush_all();
  EXPECT_EQ(content("bytes") == expected, true);
  EXPECT_TRUE(buffer.close());
  EXPECT_EQ(buffer.sputc('x'), std::char_traits<char>::eof());
  EXPECT_EQ(buffer.claim(1), nullptr);
}

}  // namespace
}  // namespace kiv
