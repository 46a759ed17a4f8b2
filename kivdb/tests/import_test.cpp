#include <sqlite3.h>

#include <algorithm>
#include <cstdlib>

#include "schema.h"
#include "support_db.h"
#include "views.h"

namespace kiv::db::test {
namespace {

class Import : public db_test {};

std::string count(const csv_table& table) {
  return "SELECT count(*) FROM " + std::string(table.name);
}

// Numbers beyond 2^63 - 1, as a book that counted below zero leaves them, come back negative.
std::string with_signs(const std::string& row_texts) {
  std::string all, cell;
  for (const char c : row_texts) {
    if (c >= '0' && c <= '9') {
      cell += c;
      continue;
    }
    const auto value = std::strtoull(cell.c_str(), nullptr, 10);
    all += value > INT64_MAX ? std::to_string(static_cast<std::int64_t>(value)) : cell;
    all += c;
    cell.clear();
  }
  return all + cell;
}

// Every value of every row of every table comes back as the analyser wrote it.
TEST_F(Import, KeepsEveryValue) {
  for (const std::string sample : {"MIX", "SQL1"}) {
    const run_result written = analyse(sample);
    const import_result result = import(dir_ / sample);
    ASSERT_EQ(error_, "");
    EXPECT_EQ(result.rejected, 0u);
    for (const auto& table : csv_tables()) {
      std::string all;
      for (const auto& row : rows("SELECT * FROM " + std::string(table.name) + " WHERE run_id = '" +
                                  sample + "' ORDER BY rowid")) {
        all += row + (table.end == row_end::marker ? "<<>>\n" : "\n");
      }
      std::string expected = written.bytes(table.name);
      std::replace(expected.begin(), expected.end(), ';', '|');
      while (expected.starts_with("<<>>\n")) expected.erase(0, 5);  // processes without symbols
      EXPECT_EQ(kiv::test::first_difference(with_signs(expected), all), "") << table.name;
    }
  }
}

TEST_F(Import, FindsOutSeparatorsAndPutsSplitFilesTogether) {
  analyse("MIX");
  import(dir_ / "MIX");
  std::vector<std::string> expected;
  for (const auto& table : csv_tables()) expected.push_back(row(count(table)));
  const std::string sums =
      "SELECT sum(rec), sum(caller_object), sum(callee_function), "
      "sum(global_live_size), count(*) FROM memory";
  const std::string sums_before = row(sums);
  const std::vector<std::vector<std::string>> variants = {
      {"-sd", ","}, {"-sf", "@"}, {"-sd", "\t", "-sf", ":"}, {"-sd", "|", "-M", "4K"}};
  for (const auto& args : variants) {
    const run_result written = analyse("MIX", args);
    const import_result result = import(dir_ / "MIX");
    ASSERT_EQ(error_, "");
    EXPECT_EQ(result.rejected, 0u) << args[1];
    EXPECT_EQ(result.seps.data, written.data_sep);
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ(row(count(csv_tables()[i])), expected[i]) << csv_tables()[i].name;
    }
    EXPECT_EQ(row(sums), sums_before);
    const std::size_t parts = written.parts("memory").size();
    EXPECT_TRUE(args.back() == "4K" ? parts > 3 : parts == 1) << parts;
  }
  EXPECT_EQ(row("SELECT count(*), min(data_separator) FROM imports"), "1||");
}

TEST_F(Import, ReplacesARunWholeOrNotAtAll) {
  write_run("A", {{"freemem.1", "A;1;1;2;f\nA;1;3;4;f\n"}, {"hashloc.1", "A;1;5;a.c:1\n"}});
  write_run("B", {{"freemem.1", "B;1;1;2;f\n"}});
  import(dir_.path());
  EXPECT_EQ(rows("SELECT run_id, count(*) FROM freemem GROUP BY 1"),
            (std::vector<std::string>{"A|2", "B|1"}));

  write_run("A", {{"freemem.1", "A;1;9;10;f\nA;x;1;1;f\n"}});
  import(dir_ / "kiv.A.sql");
  const std::vector<std::string> replaced = {"A|9", "B|1"};
  EXPECT_EQ(rows("SELECT run_id, alloc_rec FROM freemem ORDER BY 1"), replaced);
  EXPECT_EQ(row("SELECT count(*) FROM hashloc"), "0");
  EXPECT_EQ(row("SELECT run_id, line, reason, row_begin FROM rejected_rows"),
            "A|2|column 2 (main_pid): not a number: 'x'|A;x;1;1;f");

  // A file that the script announces is missing: the run stays as it was.
  write_run("A", {{"freemem.1", "A;1;7;8;f\n"}, {"hashloc.1", "A;1;5;a.c:1\n"}});
  std::filesystem::remove(dir_ / "kiv.A.hashloc.1.csv");
  import(dir_ / "kiv.A.sql");
  EXPECT_NE(error_.find("kiv.A.hashloc.1.csv: cannot be opened"), std::string::npos) << error_;
  EXPECT_EQ(rows("SELECT run_id, alloc_rec FROM freemem ORDER BY 1"), replaced);
  EXPECT_EQ(row("SELECT count(*) FROM rejected_rows"), "1");
}

TEST_F(Import, TakesFilesOfLaterTracesAndLeavesOldOnesOut) {
  write_run("A", {{"freemem.1", "A;1;1;2;f\n"}});
  write_file(dir_ / "kiv.A.freemem.2.csv", "A;1;3;4;f\n");  // of an earlier, larger run
  write_file(dir_ / "kiv.B.x.freemem.2.csv", "B.x;1;5;6;f\n");
  import(dir_.path());
  EXPECT_EQ(rows("SELECT run_id, alloc_rec FROM freemem ORDER BY 2"),
            (std::vector<std::string>{"A|1", "B.x|5"}));
  ASSERT_EQ(notes_.size(), 1u);
  EXPECT_NE(notes_[0].find("kiv.A.freemem.2.csv: left out"), std::string::npos) << notes_[0];
}

TEST_F(Import, TellsRunIdsThatShareFilesApart) {
  write_run("a_b", {{"freemem.1", "a/b;1;1;2;f\na_b;1;3;4;f\nother;1;5;6;f\n"}});
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(import(dir_.path()).rejected, 1u);
    EXPECT_EQ(rows("SELECT run_id, alloc_rec FROM freemem ORDER BY 2"),
              (std::vector<std::string>{"a/b|1", "a_b|3"}));
  }
}

TEST_F(Import, HostileFilesBreakNothing) {
  const std::string million(1'000'000, ';');
  const std::string nul("R;1;\0;2;f\nR;1;1;2;f", 19);
  write_run("R", {{"freemem.1", nul},
                  {"memory.1", million + "\nR;1\n\n"},
                  {"hashloc.1", std::string("R;1;5;a\0b\n", 10) + "R;1;6;" + million + "\n"},
                  {"queries.1", "R;1;1;1;1;never;" + million + "<<>>\n\n<<>>\nno end"},
                  {"flowdata.1", "<<>>\n<<>>\nR;1;1;1;0;8;1;arg :x;y \n<<>>\n"},
                  {"malid.1", million + "\n"},
                  {"arcs.1", std::string(5'000'000, 'x')}});
  const import_result result = import(dir_.path());
  ASSERT_EQ(error_, "");
  EXPECT_EQ(result.rows, 2u);  // the long source line and the group of symbols
  EXPECT_EQ(row("SELECT symbol_lines FROM flowdata"), "arg :x;y \n");
  EXPECT_EQ(row("SELECT length(source_line) FROM hashloc"), "1000000");
  const std::vector<std::string> expected = {
      "arcs|1|the file ends within the row", "freemem|1|column 3 (alloc_rec): not a number: '?'",
      "freemem|2|the file ends within the row",
      "hashloc|1|column 4 (source_line): NUL byte in a text"};
  auto all = rows(
      "SELECT substr(file, instr(file, 'kiv.R.') + 6, length(file) - instr(file, "
      "'kiv.R.') - 11), line, reason FROM rejected_rows ORDER BY 1, 2");
  ASSERT_EQ(all.size(), result.rejected);
  EXPECT_EQ(all.size(), 11u);
  all.resize(4);
  EXPECT_EQ(all, expected);
  EXPECT_EQ(row("SELECT max(length(row_begin)) FROM rejected_rows"), "200");
}

TEST_F(Import, RefusesScriptsOfAnotherForm) {
  const char* statements[] = {
      "execute Do_Import_Kiv_Csv_File @Path, 'R', 'flow1', 'flow', '1'",
      "execute Do_Import_Kiv_Csv_File @Path, 'R', 'flow2', 'flow', '1';",
      "execute Do_Import_Kiv_Csv_File @Path, 'R', 'flow1', 'flow', '1', '<<>>';",
      "execute Do_Import_Kiv_Csv_File @Path, 'R', 'queries1', 'queries', '1';",
      "execute Do_Import_Kiv_Csv_File @Path, 'R', 'memory1', 'memory', '1';",
      "execute Do_Import_Kiv_Csv_File @Path, '../R', 'flow1', 'flow', '1';",
      "execute Do_Import_Kiv_Csv_File @Path, 'R', 'nothing1', 'nothing', '1';",
      "execute something_else;",
  };
  for (const char* statement : statements) {
    write_file(dir_ / "kiv.R.sql", std::string("USE KIV\n") + statement + "\n");
    import(dir_ / "kiv.R.sql");
    EXPECT_NE(error_, "") << statement;
  }
  import(dir_ / "nowhere");
  EXPECT_NE(error_.find("no such script or directory"), std::string::npos);
}

TEST_F(Import, RefusesOtherDatabases) {
  write_file(dir_ / "text.db", "not a database, but long enough to look at its first page");
  database db;
  EXPECT_FALSE(db.open(dir_ / "text.db", open_mode::create));
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open((dir_ / "other.db").c_str(), &other), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(other, "CREATE TABLE t(x)", nullptr, nullptr, nullptr), SQLITE_OK);
  EXPECT_EQ(sqlite3_close(other), SQLITE_OK);
  EXPECT_FALSE(db.open(dir_ / "other.db", open_mode::create));
  EXPECT_EQ(db.error(), "not a database made by kivdb");
  EXPECT_FALSE(db.open(dir_ / "missing.db", open_mode::read_only));
}

// The scripts in the tree are what the generator writes today.
TEST_F(Import, GeneratedSchemasAreUpToDate) {
  ASSERT_EQ(std::system((KIVDB_MAKE_SCHEMAS " " + dir_.path()).c_str()), 0);
  for (const std::string file : {"sqlite/schema.sql", "sqlserver/1_tables.sql",
                                 "sqlserver/2_procedures.sql", "sqlserver/3_views.sql"}) {
    EXPECT_EQ(kiv::test::first_difference(kiv::test::read_file(dir_ / file),
                                          kiv::test::read_file(KIV_SOURCE_DIR "/database/" + file)),
              "")
        << file << ": write it anew with make_schemas database";
  }
}

}  // namespace
}  // namespace kiv::db::test
