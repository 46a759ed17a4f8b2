#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sstream>

#include "kiv/stream_diagnostics.h"
#include "support/run_trace.h"
#include "tables/csv_file.h"
#include "tables/run_output.h"

namespace kiv {
namespace {

namespace fs = std::filesystem;
using test::read_file;

// What the traces of a run share, in a private directory, with the messages caught.
class Output : public ::testing::Test {
 protected:
  void start(const std::string& runid, int version = 1) {
    shared.script.set_path(dir.path(), runid, version, true);
  }
  csv_file table(table_id table, const std::string& runid = "R42", bool first = true) {
    return {shared, table, dir.path(), runid, first};
  }
  std::string content(const std::string& name) { return read_file(dir / name); }

  const test::temp_dir dir;
  std::ostringstream out, err;
  stream_diagnostics faults{0, out, err};
  run_context context{faults};
  open_files files;
  run_output shared{context, files};
};

TEST_F(Output, LaterTracesAppendUnannouncedUntilTheySplit) {
  start("R42");
  table(table_id::memory).get_stream().write("old\n");
  table(table_id::memory).get_stream().write("first\n");  // truncates
  shared.script.set_path(dir.path(), "R42", 7, false);
  {
    csv_file file = table(table_id::memory, "R42", false);
    file.get_stream().write("second\n");
    file.split_at(13);  // what both wrote: the file counts from its size at opening
    file.get_stream().write("third\n");
  }
  shared.script.set_path(dir.path(), "R43", 0, false);
  table(table_id::memory, "R43", false).get_stream().write("fourth\n");
  EXPECT_EQ(content("kiv.R42.memory.1.csv"), "first\nsecond\n");
  EXPECT_EQ(content("kiv.R42.memory.2.csv"), "third\n");
  EXPECT_EQ(content("kiv.R43.memory.2.csv"), "fourth\n");
  EXPECT_NE(out.str().find("kiv.R43.memory.2.csv 0\n"), std::string::npos);
}

TEST_F(Output, ScriptStatements) {
  { sql_script(files, faults).generate_import(describe(table_id::memory), 1); }  // never set up
  {
    sql_script own(files, faults);
    own.set_path(dir.path(), "R42", 1, true);
    own.generate_import(describe(table_id::memory), 1);
    own.generate_import(describe(table_id::queryevents), 2);
    own.generate_import(describe(table_id::flowdata), 1);
    own.set_path(dir.path(), "R43", 0, false);
    own.generate_import(describe(table_id::queries), 10);
  }
  const std::string script = content("kiv.R42.sql");
  EXPECT_EQ(script,
            "USE KIV\nDECLARE @RUNID varchar(10)\nDECLARE @Path varchar(100)\n\n"
            "SET @RUNID = 'R42'\nSET @Path = '$(ScriptDir)\\'\n\n"
            "execute Do_Import_Kiv_Csv_File_Memory @Path, 'R42', 'memory1', 'memory', '1';\n"
            "execute Do_Import_Kiv_Csv_File @Path, 'R42', 'queryevents1', 'queryevents', '2';\n"
            "execute Do_Import_Kiv_Csv_File @Path, 'R42', 'flowdata1', 'flowdata', '1', '<<>>';\n"
            "execute Do_Import_Kiv_Csv_File @Path, 'R43', 'queries0', 'queries', '10', '<<>>';\n");
  EXPECT_FALSE(fs::exists(dir / "kiv.R43.sql"));
}

TEST(Names, WhatIsMadeIsParsed) {
  for (const std::string runid : {"R42", "", "a.b", "..", "kiv.x.memory.1.csv"}) {
    for (const csv_table& table : csv_tables()) {
      const auto file = parse_csv_name(make_csv_name(runid, table.name, "12"));
      const std::string line = make_import_statement(runid, table, 1, 12);
      const auto statement = parse_import_statement(line.substr(0, line.size() - 1));
      for (const auto& found : {file, statement}) {
        ASSERT_TRUE(found) << runid << " " << table.name;
        EXPECT_EQ(found->runid, runid);
        EXPECT_EQ(found->table, &table);
        EXPECT_EQ(found->number, "12");
      }
    }
  }
  for (const char* name : {"kiv.memory.1.csv", "kiv.R.memory.csv", "kiv.R.memory.x.csv",
                           "kiv.R.nothing.1.csv", "R.memory.1.csv", "kiv.R.memory.1.sql", ""}) {
    EXPECT_FALSE(parse_csv_name(name)) << name;
  }
  for (const char* line :
       {"execute Do_Import_Kiv_Csv_File @Path, 'R', 'memory1', 'memory', '1';",
        "execute Do_Import_Kiv_Csv_File @Path, 'R', 'queries1', 'queries', '1';",
        "execute Do_Import_Kiv_Csv_File @Path, 'R', 'sbrk1', 'sbrk', '1'", "USE KIV"}) {
    EXPECT_FALSE(parse_import_statement(line)) << line;
  }
}

TEST_F(Output, BufferKeepsEveryByteAndKnowsItsPosition) {
  std::minstd_rand random(3);
  csv_filebuf buffer(files, faults);
  EXPECT_EQ(buffer.position(), -1);
  ASSERT_TRUE(buffer.open(dir / "bytes", true));
  std::string expected;
  for (const std::size_t size :
       {0UL, 65536UL, 1UL, 65535UL, 65537UL, 200'000UL, 65535UL, 1UL, 1UL}) {
    std::string text(size, '\0');
    for (char& byte : text) byte = static_cast<char>(random());
    buffer.write(text);
    buffer.write("\n");
    expected += text + '\n';
    char* place = buffer.claim(2048);
    ASSERT_NE(place, nullptr);
    buffer.add(text.copy(place, 2048));
    expected.append(text, 0, 2048);
    EXPECT_EQ(buffer.position(), static_cast<std::int64_t>(expected.size()));
  }
  files.flush_all();
  EXPECT_EQ(content("bytes") == expected, true);
  EXPECT_TRUE(buffer.close());
  buffer.write("x");
  EXPECT_EQ(buffer.position(), -1);
  EXPECT_EQ(buffer.claim(1), nullptr);
}

}  // namespace
}  // namespace kiv
