#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "sample_profile.h"
#include "store/run_store.h"

namespace kiv::test {

using store::open_mode;
using store::run_store;
using store::save_result;

// A directory of its own, with names of files in it.
class store_test : public ::testing::Test {
 protected:
  store_test() {
    std::string name = (std::filesystem::temp_directory_path() / "kiv_store_XXXXXX").string();
    dir_ = mkdtemp(name.data());
    std::filesystem::permissions(dir_, std::filesystem::perms::all);
  }
  ~store_test() override {
    std::error_code ignored;
    std::filesystem::permissions(dir_, std::filesystem::perms::all, ignored);
    std::filesystem::remove_all(dir_, ignored);
  }

  std::string file(const std::string& name = "t.db") const { return (dir_ / name).string(); }

  save_result save(const run_profile& run, const store::save_options& options = {"src"}) {
    run_store s(
        "CREATE TABLE IF NOT EXISTS memory (run_id TEXT, rec INTEGER);"
        "INSERT OR IGNORE INTO row_table VALUES ('memory')");
    error_.clear();
    if (!s.open(file(), open_mode::create, error_)) return save_result::failed;
    return s.save(run, options, error_);
  }

  // The names of the stored runs; "!" and the error when they cannot be read.
  std::vector<std::string> names(const std::string& path) {
    run_store s;
    std::string error;
    if (!s.open(path, open_mode::read_only, error)) return {"! " + error};
    const auto all = s.runs(error);
    if (!all) return {"! " + error};
    std::vector<std::string> list;
    for (const auto& run : *all) list.push_back(run.name);
    return list;
  }
  std::vector<std::string> names() { return names(file()); }

  // All rows of a query, columns joined by '|'.
  std::vector<std::string> rows(const std::string& sql) {
    run_store s;
    std::vector<std::string> all;
    if (!s.open(file(), open_mode::read_only, error_)) return {"! " + error_};
    auto q = s.select(sql, {}, error_);
    if (!q) return {"! " + error_};
    while (q->step()) {
      auto& row = all.emplace_back();
      for (int i = 0; i < q->columns(); ++i) {
        row += i ? "|" : "";
        const auto type = q->type(i);
        row += type == store::value_type::null      ? "null"
               : type == store::value_type::integer ? std::to_string(q->integer(i))
                                                    : std::string(q->text(i));
      }
    }
    if (q->failed()) all.push_back("! " + q->error());
    return all;
  }

  std::filesystem::path dir_;
  std::string error_;
};

using texts = std::vector<std::string>;

}  // namespace kiv::test
