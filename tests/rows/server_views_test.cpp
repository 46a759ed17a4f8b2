#include <cstdlib>

#include "rows/row_tables.h"
#include "rows_fixture.h"
#include "store/sqlite_row_target.h"
#include "tsql.h"

namespace kiv::test {
namespace {

class ServerViews : public rows_test {
 protected:
  // A database with the rows of a sample, and the views of the server in place of kivdb's own.
  void load_sample(const std::string& sample) {
    analyse(sample);
    run_ = profile_of(dir_ / sample);
    ASSERT_TRUE(run_) << error_;
    ASSERT_TRUE(db_.open(dir_ / "rows.db", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE));
    ASSERT_TRUE(db_.exec("CREATE TABLE row_table (name TEXT PRIMARY KEY); BEGIN"));
    const std::string schema = rows::row_schema_sql();
    store::sqlite_row_target target(db_, schema, run_->name);
    const auto count = rows::load_rows(target, plan_.runs.at(0), {}, *run_, rejected_, error_);
    ASSERT_TRUE(count) << error_;
    ASSERT_TRUE(db_.exec("COMMIT; DROP VIEW block"));
    for (const auto& v : server::views()) {
      // Those that take a pass over all rows are read often here.
      const bool kept = v.name == "peak" || v.name == "block_groups";
      ASSERT_TRUE(db_.exec((kept ? "CREATE TABLE " : "CREATE VIEW ") + std::string(v.name) +
                           " AS " + v.select))
          << v.name << ": " << db_.error();
    }
  }
  amount read_amount(const std::string& figure, const std::string& from) {
    auto q = db_.prepare("SELECT sum(" + figure + "_blocks), sum(" + figure + "_bytes), sum(" +
                         figure + "_tot_bytes) FROM " + from);
    EXPECT_TRUE(q && q.step()) << db_.error();
    return {static_cast<std::uint64_t>(q.number(0)), static_cast<std::uint64_t>(q.number(1)),
            static_cast<std::uint64_t>(q.number(2))};
  }

  store::database db_;
  std::optional<run_profile> run_;
};

// A block is resized under its id, so that ids have the figures of the profile, but for what is
// temporary.
TEST_F(ServerViews, AgreeWithTheProfile) {
  const std::pair<const char*, figure> figures[] = {
      {"allocated", figure::made},    {"freed", figure::freed}, {"reset", figure::reset},
      {"released", figure::released}, {"live", figure::live},   {"peak", figure::at_peak}};
  for (const std::string sample : {"MIX", "SQL1"}) {
    std::filesystem::remove(dir_ / "rows.db");
    ASSERT_NO_FATAL_FAILURE(load_sample(sample));
    const profile& p = run_->traces.at(0);
    block_group all;
    amount leaked;
    std::map<std::uint32_t, block_group> by_id;
    for (const auto& g : p.groups) {
      leaked += g.leaked();
      for (std::size_t i = 0; i < figure_count; ++i) {
        all.figures[i] += g.figures[i];
        by_id[g.id].figures[i] += g.figures[i];
      }
    }
    for (const auto& [name, which] : figures) {
      for (const char* view : {"by_id", "by_color", "by_line", "by_arc", "by_process", "by_query",
                               "with_free_no_free", "run_summary"}) {
        EXPECT_EQ(read_amount(name, view), all[which]) << name << ' ' << view;
      }
      for (const auto& [id, group] : by_id) {
        EXPECT_EQ(read_amount(name, "by_id WHERE id_name = '" + p.ids[id].name + "'"), group[which])
            << name << ' ' << p.ids[id].name;
      }
    }
    EXPECT_EQ(read_amount("leaked", "by_line"), leaked);
    EXPECT_GT(leaked.blocks, 0u);
    EXPECT_EQ(db_.number("SELECT count(*) FROM live_blocks"),
              static_cast<std::int64_t>(all[figure::live].blocks));
    EXPECT_EQ(db_.number("SELECT sum(live_change) FROM marker_change"),
              static_cast<std::int64_t>(all[figure::live].bytes));
    EXPECT_EQ(db_.number("SELECT sum(live_change) FROM marker_change_by_id"),
              static_cast<std::int64_t>(all[figure::live].bytes));
    EXPECT_EQ(db_.number("SELECT COALESCE(sum(bytes), 0) FROM heap_by_arc"),
              static_cast<std::int64_t>(p.heap_bytes));
    EXPECT_EQ(db_.number("SELECT peak_rec FROM peak"), static_cast<std::int64_t>(p.peak.record));
    EXPECT_EQ(db_.number("SELECT sum(blocks) FROM lifetimes"),
              static_cast<std::int64_t>(all[figure::made].blocks - all[figure::live].blocks));
    EXPECT_EQ(db_.number("SELECT replayed_to_its_end FROM lost"), 1);
  }
}

// The scripts in the tree are what the generator writes today.
TEST_F(ServerViews, GeneratedScriptsAreUpToDate) {
  ASSERT_EQ(std::system((KIV_MAKE_SCHEMAS " " + dir_.path()).c_str()), 0);
  for (const std::string file : {"sqlite/schema.sql", "sqlite/rows.sql", "sqlserver/1_tables.sql",
                                 "sqlserver/2_procedures.sql", "sqlserver/3_views.sql",
                                 "clickhouse/server.sql", "clickhouse/cluster.sql"}) {
    EXPECT_EQ(
        first_difference(read_file(dir_ / file), read_file(KIV_SOURCE_DIR "/database/" + file)), "")
        << file << ": write it anew with make_schemas database";
  }
}

}  // namespace
}  // namespace kiv::test
