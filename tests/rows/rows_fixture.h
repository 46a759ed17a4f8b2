#pragma once

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "rows/load_rows.h"
#include "rows/profile_from_rows.h"
#include "rows/row_tables.h"
#include "store/run_store.h"
#include "support/run_trace.h"

namespace kiv::test {

inline void put_file(const std::string& path, const std::string& bytes) {
  EXPECT_TRUE(write_file(path, bytes)) << path;
}

inline const std::string some_time = "2023-11-14 22:13:20.005";

using cells = std::map<std::string, std::string>;

// A row of a table from the columns that matter; numbers are 0 and texts empty where nothing is
// given. The trace is that of process 1 of the run R.
inline std::string row_of(std::string_view table_name, cells given) {
  given.emplace("run_id", "R");
  given.emplace("main_pid", "1");
  std::string row;
  for (const auto& c : find_csv_table(table_name)->columns) {
    row += row.empty() ? "" : ";";
    const auto value = given.find(std::string(c.name));
    if (value != given.end()) {
      row += value->second;
    } else if (!c.label.empty()) {
      row += c.label;
    } else if (c.type == column_type::time) {
      row += some_time;
    } else if (c.type == column_type::i64 || c.type == column_type::u64) {
      row += '0';
    }
  }
  return row + "\n";
}

inline std::string memory_row(char type, int record, cells more = {}) {
  more.emplace("type", std::string(1, type));
  more.emplace("rec", std::to_string(record));
  return row_of("memory", more);
}
inline std::string end_row(int made_by, int record, char type) {
  return row_of("freemem", {{"alloc_rec", std::to_string(made_by)},
                            {"free_rec", std::to_string(record)},
                            {"type", std::string(1, type)}});
}

// A directory into which runs are analysed or written, and a database beside it.
class rows_test : public ::testing::Test {
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
      script += fmt::format("execute Do_Import_Kiv_Csv_File{} @Path, '{}', '{}1', '{}', '{}'{};\n",
                            table == "memory" ? "_Memory" : "", run_id, table, table, number,
                            marked ? ", '<<>>'" : "");
      put_file(dir_ / fmt::format("kiv.{}.{}.csv", run_id, name), bytes);
    }
    put_file(dir_ / ("kiv." + run_id + ".sql"), script);
  }

  // The one run that a source stands for. Nothing, with `error_` set, when there is no such.
  const rows::run_plan* plan(const std::string& source) {
    plan_ = {};
    error_.clear();
    if (!rows::make_import_plan({source}, plan_, error_)) return nullptr;
    EXPECT_EQ(plan_.runs.size(), 1u);
    return &plan_.runs.front();
  }

  std::optional<run_profile> profile_of(const std::string& source,
                                        const rows::row_options& options = {}) {
    run_profile run;
    const auto* files = plan(source);
    if (files == nullptr || !rows::profile_from_rows(*files, options, run, rejected_, error_)) {
      return std::nullopt;
    }
    return run;
  }

  // Saves the run with its rows.
  store::save_result load(const std::string& source, const run_profile& run,
                          const rows::row_options& options = {}) {
    const auto* files = plan(source);
    store::run_store s(rows::row_schema_sql());
    if (files == nullptr || !s.open(dir_ / "t.db", store::open_mode::create, error_)) {
      return store::save_result::failed;
    }
    store::save_options with_rows{source};
    with_rows.rows = [&](store::row_target& target, const run_profile& p, std::string& error) {
      return rows::load_rows(target, *files, options, p, rejected_, error);
    };
    return s.save(run, with_rows, error_);
  }

  // All rows of a query, columns joined by '|'.
  std::vector<std::string> rows(const std::string& sql) {
    store::run_store s;
    std::vector<std::string> all;
    if (!s.open(dir_ / "t.db", store::open_mode::read_only, error_)) return {"! " + error_};
    auto q = s.select(sql, {}, error_);
    if (!q) return {"! " + error_};
    while (q->step()) {
      auto& row = all.emplace_back();
      for (int i = 0; i < q->columns(); ++i) row += (i ? "|" : "") + std::string(q->text(i));
    }
    return all;
  }

  temp_dir dir_;
  rows::import_plan plan_;
  std::vector<std::string> rejected_;
  std::string error_;
};

}  // namespace kiv::test
