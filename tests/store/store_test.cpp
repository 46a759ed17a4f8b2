#include "store_fixture.h"

namespace kiv::test {
namespace {

class Store : public store_test {};

const std::string odd_names[] = {"it's",
                                 "a/b",
                                 "two\nlines",
                                 "\xff\xfe",
                                 std::string("nul\0inside", 10),
                                 "\"; DROP TABLE run; --",
                                 "",
                                 "grüße"};

TEST_F(Store, GivesBackWhatWasSaved) {
  const run_profile run{"R",
                        {rich_profile("R", 1), rich_profile("R", 2, 50), rich_profile("Q", 1)}};
  ASSERT_EQ(save(run), save_result::saved) << error_;
  run_store s;
  ASSERT_TRUE(s.open(file(), open_mode::read_only, error_)) << error_;
  const auto loaded = s.load("R", error_);
  ASSERT_TRUE(loaded) << error_;
  EXPECT_EQ(loaded->name, run.name);
  ASSERT_EQ(loaded->traces.size(), run.traces.size());
  for (std::size_t i = 0; i < run.traces.size(); ++i) {
    EXPECT_EQ(to_text(loaded->traces[i]), to_text(run.traces[i]));
    EXPECT_EQ(loaded->traces[i].complete(), run.traces[i].complete());
  }
  EXPECT_FALSE(s.load("r", error_));
  EXPECT_EQ(error_, "no run 'r'");
}

TEST_F(Store, TakesAnyName) {
  for (const auto& name : odd_names) {
    ASSERT_EQ(save(small_run(name, 10)), save_result::saved) << error_;
    ASSERT_EQ(save(small_run(name, 20)), save_result::replaced) << error_;
  }
  EXPECT_EQ(names(), texts(std::begin(odd_names), std::end(odd_names)));
  run_store s;
  ASSERT_TRUE(s.open(file(), open_mode::create, error_));
  for (const auto& name : odd_names) {
    const auto run = s.load(name, error_);
    ASSERT_TRUE(run) << error_;
    EXPECT_EQ(run->traces.at(0).groups[0].leaked().bytes, 20u);
    auto view = s.view("by_id", name, error_);
    ASSERT_TRUE(view) << error_;
    ASSERT_TRUE(view->step());
    EXPECT_EQ(view->text(0), name);
    EXPECT_FALSE(view->step());
  }
  const texts most(std::begin(odd_names) + 1, std::end(odd_names));
  ASSERT_TRUE(s.forget(most, error_)) << error_;
  EXPECT_EQ(names(), texts{odd_names[0]});
  EXPECT_FALSE(s.forget(texts{odd_names[0], "a\nb"}, error_));
  EXPECT_EQ(error_, "no run 'a?b'");
  EXPECT_EQ(names(), texts{odd_names[0]});
  for (const char* table : {"trace", "block_group", "id_name"}) {
    EXPECT_EQ(rows("SELECT count(DISTINCT trace) FROM " + std::string(table)), texts{"1"});
  }
}

TEST_F(Store, ReplacesByCompleteRunsOnly) {
  const auto good = small_run("R", 10);
  auto cut = small_run("R", 5), by_rows = small_run("R", 6);
  cut.traces[0].losses = {{"a data file is missing", 1, ""}};
  by_rows.traces[0].from_rows = true;
  auto twice = good;
  twice.traces.push_back(twice.traces[0]);
  const struct {
    const run_profile& run;
    save_result expected;
    const char* reason;
    const char* bytes;
  } steps[] = {
      {cut, save_result::saved, "", "5"},
      {cut, save_result::replaced, "", "5"},
      {by_rows, save_result::replaced, "", "6"},
      {good, save_result::replaced, "", "10"},
      {cut, save_result::refused_incomplete, "a data file is missing", "10"},
      {by_rows, save_result::refused_incomplete, "CSV tables alone", "10"},
      {twice, save_result::refused_duplicate, "two traces of the run 'R' with the process id 1",
       "10"},
      {good, save_result::replaced, "", "10"},
  };
  for (const auto& step : steps) {
    EXPECT_EQ(save(step.run), step.expected);
    EXPECT_NE(error_.find(step.reason), std::string::npos) << error_;
    EXPECT_EQ(rows("SELECT leaked_bytes FROM by_id"), texts{step.bytes});
  }
}

TEST_F(Store, KnowsTheOrderOfImports) {
  for (const char* name : {"A", "B", "C", "A"}) save(small_run(name, 1), {"from here"});
  EXPECT_EQ(names(), (texts{"B", "C", "A"}));
  run_store s;
  ASSERT_TRUE(s.open(file(), open_mode::create, error_));
  EXPECT_EQ(s.latest_run(error_), "A");
  ASSERT_TRUE(s.forget(texts{"A"}, error_));
  EXPECT_EQ(s.latest_run(error_), "C");
  const auto info = s.runs(error_);
  ASSERT_TRUE(info);
  const auto& b = info->at(0);
  EXPECT_EQ(b.source, "from here");
  EXPECT_EQ(b.traces, 1u);
  EXPECT_TRUE(b.complete);
  EXPECT_EQ(b.leaked, (amount{1, 1, 1}));
  EXPECT_FALSE(b.rows);
  ASSERT_TRUE(s.forget(texts{"B", "C"}, error_));
  EXPECT_FALSE(s.latest_run(error_));
  EXPECT_EQ(error_, "holds no runs");
}

// Labels are those of the last import under a name, in the order of their keys.
TEST_F(Store, KeepsTheLabelsOfRuns) {
  const std::string odd("it's \xff\n=\t\\\0;", 12);
  const auto labels_of = [&](const std::string& name) -> store::run_labels {
    run_store s;
    if (!s.open(file(), open_mode::read_only, error_)) return {{"!", error_}};
    const auto all = s.runs(error_);
    if (!all) return {{"!", error_}};
    for (const auto& run : *all) {
      if (run.name == name) return run.labels;
    }
    return {{"!", "no run"}};
  };
  const store::run_labels first = {{"release", "4.1"}, {odd, odd}, {"a", "x"}};
  ASSERT_EQ(save(small_run("A", 1), {"src", first}), save_result::saved);
  ASSERT_EQ(save(small_run("B", 1), {"src", {{"release", "4.2"}}}), save_result::saved);
  EXPECT_EQ(labels_of("A"), (store::run_labels{{"a", "x"}, {odd, odd}, {"release", "4.1"}}));
  ASSERT_EQ(save(small_run("A", 1), {"src", {{"release", "5"}}}), save_result::replaced);
  EXPECT_EQ(labels_of("A"), (store::run_labels{{"release", "5"}}));
  EXPECT_EQ(labels_of("B"), (store::run_labels{{"release", "4.2"}}));
  ASSERT_EQ(save(small_run("A", 1)), save_result::replaced);
  EXPECT_EQ(labels_of("A"), store::run_labels());
  run_store s;
  ASSERT_TRUE(s.open(file(), open_mode::create, error_));
  ASSERT_TRUE(s.forget(texts{"B"}, error_));
  EXPECT_EQ(rows("SELECT * FROM run_label"), texts());
}

// Rows are part of the save: they come and go with it.
TEST_F(Store, SavesRowsInTheSameTransaction) {
  const auto with_rows = [](bool succeed) {
    store::save_options options{"src"};
    options.rows = [succeed](store::row_target& target, const run_profile&,
                             std::string& error) -> std::optional<std::uint64_t> {
      const store::row_column rec[] = {{"rec", 0, false}};
      const store::row_value row[] = {{"1", 1}};
      EXPECT_TRUE(target.begin("memory", rec) && target.write(row) && target.finish());
      error = "row 2 is bad";
      if (!succeed) return std::nullopt;
      return 1;
    };
    return options;
  };
  EXPECT_EQ(save(small_run("A", 1), with_rows(false)), save_result::failed);
  EXPECT_EQ(error_, "row 2 is bad");
  EXPECT_FALSE(std::filesystem::exists(file()));
  EXPECT_EQ(save(small_run("A", 1), with_rows(true)), save_result::saved);
  EXPECT_EQ(save(small_run("B", 1), with_rows(true)), save_result::saved);
  EXPECT_EQ(save(small_run("A", 2), with_rows(false)), save_result::failed);
  EXPECT_EQ(rows("SELECT run_id, rec FROM memory"), (texts{"A|1", "B|1"}));
  EXPECT_EQ(rows("SELECT leaked_bytes FROM by_id"), (texts{"1", "1"}));
  EXPECT_EQ(save(small_run("A", 3)), save_result::replaced);
  EXPECT_EQ(rows("SELECT run_id FROM memory"), texts{"B"});
  EXPECT_EQ(rows("SELECT run, row_count FROM run_list"), (texts{"B|1", "A|null"}));
}

TEST_F(Store, RefusesADatabaseThatDoesNotFitTogether) {
  const char* damages[] = {
      "UPDATE block_group SET line = 99",    "UPDATE call_path SET parent = place WHERE place > 0",
      "DELETE FROM id_name WHERE place = 0", "UPDATE id_name SET number = -1",
      "UPDATE histogram SET kind = 5",       "DELETE FROM timeline_step WHERE place = 2",
      "UPDATE mark_level SET id = 1000000"};
  for (const char* damage : damages) {
    std::filesystem::remove(file());
    ASSERT_EQ(save({"R", {rich_profile("R", 1)}}), save_result::saved);
    run_store s;
    ASSERT_TRUE(s.open(file(), open_mode::create, error_));
    ASSERT_TRUE(s.connection().exec(damage));
    EXPECT_FALSE(s.load("R", error_)) << damage;
    EXPECT_NE(error_.find("damaged"), std::string::npos) << damage << ": " << error_;
  }
}

TEST_F(Store, RunsOneReadingStatementOnly) {
  ASSERT_EQ(save(small_run("R", 1)), save_result::saved);
  const struct {
    const char* sql;
    const char* error;  // null: allowed
  } cases[] = {
      {"SELECT 1", nullptr},
      {" WITH t AS (SELECT run FROM by_id) SELECT * FROM t ; -- done", nullptr},
      {"DELETE FROM run", "only a SELECT"},
      {"ATTACH 'x' AS y", "only a SELECT"},
      {"PRAGMA query_only = 0", "only a SELECT"},
      {"PRAGMA journal_mode = DELETE", "only a SELECT"},
      {"BEGIN", "only a SELECT"},
      {"CREATE TEMP TABLE t(x)", "only a SELECT"},
      {"SELECT 1; SELECT 2", "more than one"},
      {"SELECT 1; DELETE FROM run", "more than one"},
      {"", "no statement"},
      {"-- nothing", "no statement"},
      {"SELEC 1", "syntax error"},
      {"SELECT nope FROM by_id", "no such column"},
  };
  run_store s;
  ASSERT_TRUE(s.open(file(), open_mode::read_only, error_));
  for (const auto& c : cases) {
    const auto q = s.select(c.sql, {}, error_);
    EXPECT_EQ(q != nullptr, c.error == nullptr) << c.sql << ": " << error_;
    const std::string reason = c.error == nullptr ? "" : c.error;
    EXPECT_NE(error_.find(reason), std::string::npos) << error_;
  }
  EXPECT_FALSE(s.view("nothing", std::nullopt, error_));
  EXPECT_NE(error_.find("no view 'nothing'"), std::string::npos);
  EXPECT_FALSE(s.view("by_id", "NOPE", error_));
  EXPECT_EQ(error_, "no run 'NOPE'");
}

}  // namespace
}  // namespace kiv::test
