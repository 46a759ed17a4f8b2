#include <algorithm>
#include <cstdlib>

#include "rows_fixture.h"

namespace kiv::test {
namespace {

using texts = std::vector<std::string>;

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

class LoadRows : public rows_test {
 protected:
  // Whole tables of one small trace: a block made and freed.
  static std::map<std::string, std::string> small_tables() {
    return {{"memory.1", memory_row('a', 1, {{"size", "8"}, {"global_live_size", "8"}}) +
                             memory_row('f', 2, {{"linked_rec", "1"}}) + memory_row('a', 3)},
            {"freemem.1", end_row(1, 2, 'f')},
            {"hashloc.1", row_of("hashloc", {{"location", "5"}, {"source_line", "a.c:1"}})},
            {"marker.1", row_of("marker", {{"rec", "3"}, {"type", "Record"}, {"subtype", "End"}})},
            {"runs.1", row_of("runs", {})}};
  }
};

// Every value of every row of every table comes back as the analyser wrote it.
TEST_F(LoadRows, KeepsEveryValue) {
  for (const std::string sample : {"MIX", "SQL1"}) {
    const run_result written = analyse(sample);
    auto run = profile_of(dir_ / sample);
    ASSERT_TRUE(run) << error_;
    run->name = "it's";
    ASSERT_NE(load(dir_ / sample, *run), store::save_result::failed) << error_;
    EXPECT_EQ(rejected_, texts{});
    for (const auto& table : csv_tables()) {
      std::string all;
      for (const auto& row : rows("SELECT * FROM " + std::string(table.name) + " ORDER BY rowid")) {
        ASSERT_TRUE(row.starts_with("it's|")) << row;
        all += sample + row.substr(4) + (table.end == row_end::marker ? "<<>>\n" : "\n");
      }
      std::string expected = written.bytes(table.name);
      std::replace(expected.begin(), expected.end(), ';', '|');
      while (expected.starts_with("<<>>\n")) expected.erase(0, 5);  // processes without symbols
      EXPECT_EQ(first_difference(with_signs(expected), all), "") << table.name;
    }
    EXPECT_EQ(rows("SELECT count(*) FROM block WHERE end_rec IS NULL AND type = 'a'").size(), 1u);
  }
}

TEST_F(LoadRows, FindsOutSeparatorsAndPutsSplitFilesTogether) {
  analyse("MIX");
  const auto plain = profile_of(dir_ / "MIX");
  ASSERT_TRUE(plain) << error_;
  const texts variants[] = {{"-sd", ","},
                            {"-sf", "@"},
                            {"-sd", "\t", "-sf", ":"},
                            {"-sd", " "},
                            {"-sd", "|", "-M", "4K"}};
  for (const auto& args : variants) {
    const run_result written = analyse("MIX", args);
    const auto run = profile_of(dir_ / "MIX");
    ASSERT_TRUE(run) << args[1] << ": " << error_;
    const std::size_t parts = written.parts("memory").size();
    EXPECT_TRUE(args.back() == "4K" ? parts > 3 : parts == 1) << parts;
    ASSERT_EQ(run->traces[0].groups.size(), plain->traces[0].groups.size()) << args[1];
    for (std::size_t i = 0; i < run->traces[0].groups.size(); ++i) {
      EXPECT_EQ(run->traces[0].groups[i].figures, plain->traces[0].groups[i].figures);
    }
    EXPECT_NE(load(dir_ / "MIX", *run), store::save_result::failed) << args[1] << ": " << error_;
    EXPECT_EQ(rows("SELECT count(*), sum(rec) FROM memory"),
              rows("SELECT max(records), max(records) * (max(records) + 1) / 2 FROM run_summary"));
  }
}

// Whatever is wrong with the files: the message says where, and nothing is loaded.
TEST_F(LoadRows, RefusesTablesThatAreNotWhole) {
  const auto good = small_tables();
  write_run("R", good);
  const auto run = profile_of(dir_.path());
  ASSERT_TRUE(run) << error_;
  ASSERT_EQ(load(dir_.path(), *run), store::save_result::saved) << error_;
  const auto all = good.at("memory.1");
  const auto second_row = all.find('\n') + 1;
  const struct {
    const char* file;
    std::string bytes;
    const char* of_profile;  // the message, or null: nothing wrong is seen
    const char* of_rows;     // where the profile comes from the trace
  } cases[] = {
      {"memory.1", all.substr(0, all.size() - 1), "memory.1.csv, line 3: the file ends within", ""},
      {"memory.1", all.substr(0, all.size() - 100), "memory.1.csv, line 3: the file ends within",
       ""},
      {"memory.1", all.substr(0, all.rfind('\n', all.size() - 2) + 1),
       "has 2 records, but `marker` says 3", "2 memory records in the rows, 3 in the trace"},
      {"memory.1", "", "freemem.1.csv, line 1: ends a block at a record that",
       "0 memory records in the rows"},
      {"memory.1", all.substr(second_row),
       "memory.1.csv, line 1: record 1 of the trace with the process id 1 is missing", ""},
      {"memory.1", all + all,
       "memory.1.csv, line 4: record 1 of the trace with the process id 1 again: two traces", ""},
      {"memory.1", all.substr(0, second_row) + all, "line 2: record 1 of the trace", ""},
      {"memory.1", all.substr(0, second_row) + "junk\n" + all.substr(second_row),
       "memory.1.csv, line 2: column 2", ""},
      {"freemem.1", "", "record 2 ends record 1, but `freemem` has no row for it",
       "0 blocks freed in the rows, 1 in the trace"},
      {"freemem.1", end_row(1, 2, 'F'), "freemem.1.csv, line 1: type F, but record 2 is of type f",
       "0 blocks freed in the rows"},
      {"freemem.1", end_row(3, 2, 'f'),
       "freemem.1.csv, line 1: ends record 3, of which no block is live", nullptr},
      {"freemem.1", end_row(1, 2, 'f') + end_row(3, 9, 'f'),
       "freemem.1.csv, line 2: ends a block at a record that", "2 blocks freed in the rows"},
      {"runs.1", good.at("runs.1") + good.at("runs.1"), "two traces with the process id 1",
       nullptr},
      {"hashloc.1", "R;1;5;a.c:1", "hashloc.1.csv, line 1: the file ends within a row", ""},
      {"objects.1", "R;1;5;lib", "objects.1.csv: the file ends within a row",
       "objects.1.csv, line 1: the file ends within a row"},
      {"flowdata.1", "R;1;1;1;0;8;1;arg :x\n<<>>", "", ""},
      {"hashloc.1", "Q;1;5;a.c:1\n", nullptr, nullptr},  // named as rejected
  };
  for (const auto& c : cases) {
    auto files = good;
    files[c.file] = c.bytes;
    write_run("R", files);
    const auto seen = profile_of(dir_.path());
    EXPECT_EQ(seen.has_value(), c.of_profile == nullptr) << c.file << ": " << error_;
    if (c.of_profile != nullptr) {
      EXPECT_NE(error_.find(c.of_profile), std::string::npos) << error_;
    }
    const auto result = load(dir_.path(), *run);
    if (c.of_rows == nullptr) {
      EXPECT_EQ(result, store::save_result::replaced) << error_;
      ASSERT_EQ((write_run("R", good), load(dir_.path(), *run)), store::save_result::replaced);
      continue;
    }
    EXPECT_EQ(result, store::save_result::failed);
    const std::string reason = *c.of_rows ? c.of_rows : c.of_profile;
    EXPECT_NE(error_.find(reason), std::string::npos) << error_;
    EXPECT_EQ(rows("SELECT count(*), max(rec) FROM memory"), texts{"3|3"});
    EXPECT_EQ(rows("SELECT row_count FROM run_list"), texts{"7"});
  }
  write_run("R", good);
  std::filesystem::remove(dir_ / "kiv.R.hashloc.1.csv");
  EXPECT_EQ(plan(dir_.path()), nullptr);
  EXPECT_NE(error_.find("kiv.R.hashloc.1.csv: No such file or directory; kiv.R.sql announces"),
            std::string::npos)
      << error_;
}

TEST_F(LoadRows, NamesRejectedRows) {
  auto files = small_tables();
  files["hashloc.1"] =
      "R;x;5;a\nR;1;5;b\nR;1\nother;1;6;c\nR;1;y;d\nR;1;7;" + std::string(1'000'000, 'x') + "\n";
  write_run("R", files);
  const auto run = profile_of(dir_.path());
  ASSERT_TRUE(run) << error_;
  ASSERT_EQ(load(dir_.path(), *run), store::save_result::saved) << error_;
  ASSERT_EQ(rejected_.size(), 1u);
  EXPECT_TRUE(rejected_[0].ends_with(
      "kiv.R.hashloc.1.csv: rows that cannot be read: line 1: column 2 (main_pid): not a number: "
      "'x'; line 3: column 3 (location): missing, the row ends before it; line 4: run id 'other' "
      "in "
      "a file of another run; and 1 more"))
      << rejected_[0];
  EXPECT_EQ(rows("SELECT location FROM hashloc"), (texts{"5", "7"}));
}

TEST_F(LoadRows, TellsTracesOfOneRunApart) {
  std::map<std::string, std::string> files;
  for (const auto& [name, bytes] : small_tables()) {
    std::string second = bytes;
    for (auto at = second.find("R;1;"); at != std::string::npos; at = second.find("\nR;1;", at)) {
      second.replace(second.find("R;1;", at), 4, "R;2;");
    }
    files[name] = bytes + second;
  }
  write_run("R", files);
  const auto run = profile_of(dir_.path());
  ASSERT_TRUE(run) << error_;
  ASSERT_EQ(run->traces.size(), 2u);
  EXPECT_EQ(run->traces[0].pid, 1);
  EXPECT_EQ(run->traces[1].pid, 2);
  EXPECT_EQ(run->traces[0].groups.size(), run->traces[1].groups.size());
  EXPECT_EQ(load(dir_.path(), *run), store::save_result::saved) << error_;
  auto other = *run;
  other.traces.pop_back();
  EXPECT_EQ(load(dir_.path(), other), store::save_result::failed);
  EXPECT_NE(error_.find("process id 2, which the run does not have"), std::string::npos) << error_;
}

// File names cannot hold every byte of a run id; the rows can.
TEST_F(LoadRows, TakesTheRunIdFromTheRows) {
  write_run("a_b", {{"hashloc.1", "a/b;1;5;x\n"}});
  const auto run = profile_of(dir_.path());
  ASSERT_TRUE(run) << error_;
  EXPECT_EQ(run->name, "a/b");
  write_run("a_b", {{"hashloc.1", "a/b;1;5;x\na_b;1;5;x\n"}});
  EXPECT_FALSE(profile_of(dir_.path()));
  EXPECT_NE(error_.find("rows of the runs 'a/b' and 'a_b' stand in the same files"),
            std::string::npos)
      << error_;
}

TEST_F(LoadRows, HostileFilesBreakNothing) {
  const std::string million(1'000'000, ';');
  const std::string files[] = {million + "\n", std::string("R;1;\0;2;f\n", 10), "\n\n\n",
                               std::string(5'000'000, 'x') + "\n", "R;1;99999999999999999999\n"};
  for (const auto& table : csv_tables()) {
    for (const auto& bytes : files) {
      auto tables = small_tables();
      tables[std::string(table.name) + ".1"] =
          bytes + (table.end == row_end::marker ? "<<>>\n" : "");
      write_run("R", tables);
      const bool counted = table.name == "memory" || table.name == "freemem";
      const auto run = profile_of(dir_.path());
      EXPECT_EQ(run.has_value(), !counted) << table.name << error_;
      if (!run) continue;
      EXPECT_NE(load(dir_.path(), *run), store::save_result::failed) << table.name << error_;
      EXPECT_EQ(rejected_.size(), 1u) << table.name;
    }
  }
}

class ImportPlan : public rows_test {
 protected:
  std::string error_of(const texts& sources) {
    rows::import_plan plan;
    std::string error;
    rows::make_import_plan(sources, plan, error);
    return error;
  }
};

TEST_F(ImportPlan, TakesFilesOfLaterTracesAndLeavesOldOnesOut) {
  write_run("A", {{"freemem.1", "A;1;1;2;f\n"}});
  put_file(dir_ / "kiv.A.freemem.2.csv", "A;1;3;4;f\n");  // of an earlier, larger run
  put_file(dir_ / "kiv.B.x.freemem.2.csv", "B.x;1;5;6;f\n");
  rows::import_plan plan;
  ASSERT_TRUE(rows::make_import_plan({dir_.path()}, plan, error_)) << error_;
  ASSERT_EQ(plan.runs.size(), 2u);
  EXPECT_EQ(plan.runs[0].run_id, "A");
  EXPECT_EQ(plan.runs[0].files.size(), 1u);
  EXPECT_EQ(plan.runs[1].run_id, "B.x");
  ASSERT_EQ(plan.notes.size(), 1u);
  EXPECT_NE(plan.notes[0].find("kiv.A.freemem.2.csv: left out"), std::string::npos);
}

TEST_F(ImportPlan, SaysWhatIsWrong) {
  std::filesystem::create_directory(dir_ / "nothing");
  std::filesystem::create_directory(dir_ / "run");
  std::filesystem::create_directory(dir_ / "stopped");
  put_file(dir_ / "stopped/kiv.S.sql", "USE KIV\n");
  const std::string directory = dir_ / "run", script = directory + "/kiv.R.sql";
  write_run("R", {{"freemem.1", ""}});
  for (const char* name : {"kiv.R.sql", "kiv.R.freemem.1.csv"}) {
    std::filesystem::rename(dir_ / name, directory + "/" + name);
  }
  const struct {
    texts sources;
    std::string error;
  } cases[] = {
      {{directory}, ""},
      {{script}, ""},
      {{directory, directory + "/."}, "named twice"},
      {{directory, script}, "kiv.R.freemem.1.csv: named by two sources"},
      {{script, directory}, "kiv.R.freemem.1.csv: named by two sources"},
      {{dir_ / "nowhere"}, "nowhere: no such script or directory"},
      {{dir_ / "nothing"}, "nothing: nothing to import; there is neither an import script"},
      {{dir_ / "stopped"}, "stopped: nothing to import; kiv.S.sql announces no file"},
  };
  for (const auto& c : cases) {
    const std::string error = error_of(c.sources);
    EXPECT_EQ(error.empty(), c.error.empty()) << error;
    EXPECT_NE(error.find(c.error), std::string::npos) << error;
  }
  put_file(dir_ / "stopped/kiv.S.memory.1.csv", "");
  EXPECT_NE(error_of({dir_ / "stopped"}).find("kiv.S.memory.1.csv: left out"), std::string::npos);
}

TEST_F(ImportPlan, RefusesScriptsOfAnotherForm) {
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
    put_file(dir_ / "kiv.R.sql", std::string("USE KIV\n") + statement + "\n");
    EXPECT_NE(error_of({dir_ / "kiv.R.sql"}), "") << statement;
  }
}

}  // namespace
}  // namespace kiv::test
