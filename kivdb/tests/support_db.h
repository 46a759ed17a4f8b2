#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "database.h"
#include "importer.h"
#include "support/run_trace.h"

namespace kiv::db::test {

using kiv::test::run_kiv;
using kiv::test::run_result;
using kiv::test::temp_dir;

inline void write_file(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// A directory with a database in it, into which CSV files are imported.
class db_test : public ::testing::Test {
 protected:
  // Runs the analyser over a copy of a sample and leaves everything in that copy.
  run_result analyse(const std::string& sample, std::vector<std::string> args = {}) {
    std::filesystem::copy(KIV_SOURCE_DIR "/samples/" + sample, dir_ / sample,
                          std::filesystem::copy_options::recursive |
                              std::filesystem::copy_options::overwrite_existing);
    args.insert(args.end(), {"-R", sample});
    return run_kiv(dir_.path(), args);
  }

  // Writes an import script for the files of one run, and the files: by "table.number".
  void write_run(const std::string& run_id, const std::map<std::string, std::string>& files) {
    std::string script = "USE KIV\n";
    for (const auto& [name, bytes] : files) {
      const auto dot = name.find('.');
      const std::string table = name.substr(0, dot), number = name.substr(dot + 1);
      const bool marked = table == "queries" || table == "flowdata";
      script += "execute Do_Import_Kiv_Csv_File" + std::string(table == "memory" ? "_Memory" : "") +
                " @Path, '" + run_id + "', '" + table + "1', '" + table + "', '" + number + "'" +
                (marked ? ", '<<>>'" : "") + ";\n";
      write_file(dir_ / ("kiv." + run_id + "." + name + ".csv"), bytes);
    }
    write_file(dir_ / ("kiv." + run_id + ".sql"), script);
  }

  // Imports and opens the database. The result of the last run; `error_` is set when one failed.
  import_result import(const std::string& source, const import_options& options = {}) {
    import_plan plan;
    import_result result;
    error_.clear();
    notes_.clear();
    if (!make_import_plan({source}, plan, error_)) return result;
    notes_ = plan.notes;
    EXPECT_TRUE(db_.open(dir_ / "test.db", open_mode::create)) << db_.error();
    import_progress progress(0);
    importer run(db_, options, progress);
    for (const auto& p : plan.runs) {
      result = {};
      if (!run.import_run(p, result)) error_ = run.error();
    }
    return result;
  }

  // All rows of a query, columns joined by '|'.
  std::vector<std::string> rows(const std::string& sql) {
    std::vector<std::string> all;
    statement query = db_.prepare(sql);
    EXPECT_TRUE(query) << sql << ": " << db_.error();
    while (query && query.step()) {
      auto& row = all.emplace_back();
      for (int i = 0; i < query.columns(); ++i) {
        row += (i ? "|" : "") + std::string(query.text(i));
      }
    }
    return all;
  }
  std::string row(const std::string& sql) {
    const auto all = rows(sql);
    return all.empty() ? "(no row)" : all[0];
  }

  temp_dir dir_;
  database db_;
  std::string error_;
  std::vector<std::string> notes_;
};

}  // namespace kiv::db::test
