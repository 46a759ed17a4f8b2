#include <algorithm>
#include <map>
#include <utility>

#include "store/view_catalogue.h"
#include "store_fixture.h"

namespace kiv::test {
namespace {

class StoreViews : public store_test {};

const store::save_options labelled{"src", {{"host", "h1"}, {"release", "4.2"}}};

// Those whose rows are not of a run.
bool is_of_all_runs(const sql_view& view) {
  return view.name == "fleet_summary" || view.name == "fleet_outliers" ||
         view.name == "fleet_first_leaks" || view.name == "fleet_growth";
}

TEST_F(StoreViews, AllAreDescribedAndCanBeRead) {
  ASSERT_EQ(save({"R", {rich_profile("R", 1)}}, labelled), save_result::saved);
  EXPECT_GT(store::views().size(), 20u);
  for (const auto& view : store::views()) {
    EXPECT_GT(view.description.size(), 10u) << view.name;
    EXPECT_EQ(view.select.find("{{"), std::string_view::npos) << view.name;
    if (is_of_all_runs(view)) continue;
    const auto all = rows("SELECT * FROM " + std::string(view.name) + " WHERE run = 'R'");
    ASSERT_FALSE(all.empty()) << view.name;
    EXPECT_NE(all.back()[0], '!') << view.name << ": " << all.back();
    EXPECT_TRUE(rows("SELECT * FROM " + std::string(view.name) + " WHERE run = 'S'").empty());
  }
}

// A view of one run is what the view of all runs says of it.
TEST_F(StoreViews, TakeOneRunAlone) {
  auto other = rich_profile("S", 1);
  other.paths.push_back({3, 2});
  const block_groups before = std::exchange(other.groups, {});
  for (block_group g : before) {
    g[figure::made].bytes += 7;
    other.groups.push_back(g);
  }
  ASSERT_EQ(save({"R", {rich_profile("R", 1), rich_profile("R", 2, 2)}}, labelled),
            save_result::saved);
  ASSERT_EQ(save({"S", {other}}, labelled), save_result::saved);
  run_store s;
  ASSERT_TRUE(s.open(file(), open_mode::read_only, error_));
  const auto read = [](std::unique_ptr<store::row_cursor> q) {
    texts all;
    while (q && q->step()) {
      auto& row = all.emplace_back();
      for (int i = 0; i < q->columns(); ++i) row += std::string(q->text(i)) + '|';
    }
    EXPECT_TRUE(q && !q->failed());
    std::sort(all.begin(), all.end());
    return all;
  };
  for (const auto& view : store::views()) {
    if (is_of_all_runs(view)) continue;
    for (const std::string run : {"R", "S"}) {
      const auto one = read(s.view(view.name, run, error_));
      EXPECT_FALSE(one.empty()) << view.name << error_;
      EXPECT_EQ(one, read(s.select("SELECT * FROM " + std::string(view.name) + " WHERE run = ?",
                                   {run}, error_)))
          << view.name;
    }
  }
}

// Every way to group the blocks gives the same sums, which are those of the groups themselves.
TEST_F(StoreViews, EveryKeyAddsUpToTheGroups) {
  const run_profile run{"R", {rich_profile("R", 1, 4), rich_profile("R", 2, 5)}};
  ASSERT_EQ(save(run), save_result::saved);
  std::map<std::string, amount> sums;
  const std::pair<const char*, figure> names[] = {
      {"allocated", figure::made},     {"freed", figure::freed}, {"reset", figure::reset},
      {"released", figure::released},  {"live", figure::live},   {"peak", figure::at_peak},
      {"temporary", figure::temporary}};
  for (const auto& trace : run.traces) {
    for (const auto& g : trace.groups) {
      for (const auto& [name, which] : names) sums[name] += g[which];
      sums["leaked"] += g.leaked();
    }
  }
  ASSERT_NE(sums["leaked"], sums["live"]);
  for (const char* view : {"by_id", "by_color", "by_line", "by_function", "by_path", "by_process",
                           "by_query", "with_free_no_free", "run_summary"}) {
    for (const auto& [name, sum] : sums) {
      EXPECT_EQ(rows("SELECT sum(" + name + "_blocks), sum(" + name + "_bytes), sum(" + name +
                     "_tot_bytes) FROM " + view),
                texts{std::to_string(sum.blocks) + '|' + std::to_string(sum.bytes) + '|' +
                      std::to_string(sum.tot_bytes)})
          << view << ' ' << name;
    }
  }
  for (const char* key : {"id", "color", "line", "function", "process", "query"}) {
    for (const char* name : {"leaked", "peak", "allocated", "live", "temporary"}) {
      EXPECT_EQ(rows("SELECT sum(" + std::string(name) + "_bytes) FROM fleet_by_" + key),
                texts{std::to_string(sums[name].bytes)})
          << key << ' ' << name;
    }
  }
  EXPECT_EQ(rows("SELECT sum(leaked_bytes) FROM fleet_trace"),
            texts{std::to_string(sums["leaked"].bytes)});
}

TEST_F(StoreViews, ShowNamesAsTexts) {
  auto p = rich_profile("R", 7);
  p.ids[1].name = "oic cache";
  p.lines[2] = "b.c:2";
  ASSERT_EQ(save({"R", {p}}), save_result::saved);
  const struct {
    const char* sql;
    texts expected;
  } cases[] = {
      {"SELECT DISTINCT id_name FROM by_id ORDER BY 1", {"big", "oic cache", "unknown id"}},
      {"SELECT id_name, color_name FROM by_color ORDER BY 1",
       {"big|red", "oic cache|red", "unknown id|unknown colour"}},
      {"SELECT source_line FROM by_line ORDER BY 1", {"a.c:1", "b.c:2", "unknown line"}},
      {"SELECT function FROM by_function ORDER BY 1", {"libx:f", "liby:g<int, char>", "unknown"}},
      {"SELECT depth, path FROM paths ORDER BY 1",
       {"0|(no function)", "1|libx:f", "2|libx:f > liby:g<int, char>",
        "3|libx:f > liby:g<int, char> > libx:f"}},
      {"SELECT DISTINCT name FROM fleet_by_color ORDER BY 1",
       {"big / red", "oic cache / red", "unknown id / unknown colour"}},
      {"SELECT DISTINCT name FROM fleet_by_function ORDER BY 1",
       {"libx:f", "liby:g<int, char>", "unknown"}},
      {"SELECT process_pid, process_name FROM by_process ORDER BY 1",
       {"0|default process", "7|app"}},
      {"SELECT kind, from_size, to_size, blocks FROM sizes ORDER BY 2",
       {"with free|0|0|4", "no free|2147483648|4294967295|5"}},
      {"SELECT from_records, to_records, id_name FROM lifetimes_by_id", {"128|255|oic cache"}},
      {"SELECT kind, process_name, path, count, bytes FROM heap_growth ORDER BY kind",
       {"gap|default process|(no function)|1|-16", "growth|app|libx:f > liby:g<int, char>|3|4096"}},
      {"SELECT marker, live_bytes, live_change FROM marker_change", {"0|100|100", "1|50|-50"}},
      {"SELECT marker, id_name, live_bytes, live_change FROM marker_change_by_id ORDER BY 1, 2",
       {"0|big|40|40", "0|oic cache|60|60", "1|oic cache|10|-50"}},
      {"SELECT what, count, first FROM losses", {"cut|3|in file x", "unknown record|1|"}},
      {"SELECT complete, from_rows, records FROM run_summary", {"0|0|4000000000000"}},
  };
  for (const auto& c : cases) EXPECT_EQ(rows(c.sql), c.expected) << c.sql;
}

// Blocks of several ids may have the unknown colour, and blocks without bytes have a name too.
TEST_F(StoreViews, AFleetHasTheNamesOfGroups) {
  run_profile run = small_run("R", 5);
  profile& p = run.traces[0];
  block_group g;
  g[figure::made] = g[figure::at_peak] = {1, 7, 8};
  p.groups.push_back(g);
  p.lines = {"unknown line", "a.c:1", "a.c:2"};
  g[figure::made] = g[figure::at_peak] = {1, 0, 0};
  g.id = 1;
  g.line = 2;
  p.groups.push_back(g);
  ASSERT_EQ(save(run), save_result::saved);
  EXPECT_EQ(rows("SELECT name, allocated_bytes, leaked_bytes, peak_bytes FROM fleet_by_color"),
            (texts{"unknown id / unknown colour|7|0|7", "cache / unknown colour|5|5|0"}));
  EXPECT_EQ(rows("SELECT name, allocated_bytes FROM fleet_by_line"),
            (texts{"unknown line|12", "a.c:2|0"}));
  EXPECT_EQ(rows("SELECT id_name, allocated_bytes FROM by_color ORDER BY 2 DESC"),
            (texts{"unknown id|7", "cache|5"}));
}

// The text of a path is bounded, and so is the time for all of them.
TEST_F(StoreViews, BoundTheTextsOfDeepPaths) {
  auto p = rich_profile("R", 7);
  for (std::uint32_t i = 4; i < 10'000; ++i) p.paths.push_back({i - 1, 2});
  ASSERT_EQ(save({"R", {p}}), save_result::saved);
  const auto deepest = rows("SELECT max(depth), max(length(path)) < 5000, count(*) FROM paths");
  EXPECT_EQ(deepest, texts{"9999|1|10000"});
}

}  // namespace
}  // namespace kiv::test
