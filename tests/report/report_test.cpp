#include <gtest/gtest.h>

#include <sstream>

#include "report/json_reader.h"
#include "report/made_profile.h"
#include "report/print_report.h"
#include "report/run_report.h"

namespace kiv::report {
namespace {

using test::made_at;
using test::made_profile;
using test::read_json;
using test::run_of;

// Two traces of a run, with every figure different from every other.
run_profile sample() {
  made_profile first("R1", 77);
  first.add({.line = "order.c:24", .path = {"app:main", "shop:take<int>"}},
            {{figure::made, {10, 1000, 1600}},
             {figure::freed, {3, 300, 480}},
             {figure::left_with_id, {2, 200, 320}},
             {figure::reset, {1, 100, 160}},
             {figure::live, {4, 400, 640}},
             {figure::at_peak, {5, 500, 800}},
             {figure::temporary, {1, 90, 144}}});
  first.add({.line = "log.c:7", .id = "oic log", .color = "large", .no_free = true},
            {{figure::made, {6, 60, 96}},
             {figure::released, {2, 20, 32}},
             {figure::live, {4, 40, 64}},
             {figure::at_peak, {3, 30, 48}}});
  first.trace.start = "2023-11-14 22:13:20.005";
  first.trace.end = "2023-11-14 22:14:20.250";
  first.trace.records = 16;
  first.trace.heap_bytes = 4096;
  first.trace.peak = {{8, 530, 848}, 12, "2023-11-14 22:13:21.000"};
  first.trace.timeline = {{8, "", 530, 100, 0, {}}, {16, "", 265, 0, 0, {}}};
  made_profile second("R1", 78);
  second.leak({.line = "log.c:7", .process = "worker"}, 1, 600);
  second.trace.losses = {{"out of sync", 3, "kiv.78.000.kivdat, byte 17"}};
  return run_of("R1", {first.trace, second.trace});
}

std::string printed(const run_profile& run, const report_options& options,
                    const print_style& style = {}, std::size_t top = 10) {
  std::vector<run_report> reports(1);
  std::string error;
  EXPECT_TRUE(make_report(run, options, reports[0], error)) << error;
  std::ostringstream out;
  print_reports(out, reports, style, top);
  return out.str();
}

std::string printed_json(const run_profile& run, const report_options& options) {
  return printed(run, options, {.format = output_format::json});
}

TEST(Report, FiguresOfATrace) {
  const auto json = read_json(printed_json(sample(), {}));
  const auto& trace = json["runs"][0]["traces"][0];
  const struct {
    const char* name;
    long long blocks, bytes, tot_bytes;
  } expected[] = {{"allocated", 16, 1060, 1696}, {"freed", 3, 300, 480},  {"leaked", 6, 600, 960},
                  {"reset", 1, 100, 160},        {"released", 2, 20, 32}, {"live", 8, 440, 704},
                  {"temporary", 1, 90, 144},     {"peak", 8, 530, 848}};
  for (const auto& [name, blocks, bytes, tot_bytes] : expected) {
    EXPECT_EQ(trace[name]["blocks"].number(), blocks) << name;
    EXPECT_EQ(trace[name]["bytes"].number(), bytes) << name;
    EXPECT_EQ(trace[name]["tot_bytes"].number(), tot_bytes) << name;
  }
  EXPECT_EQ(trace["no_free"]["live"]["bytes"].number(), 40);
  EXPECT_EQ(trace["no_free"]["leaked"]["bytes"].number(), 0);
  EXPECT_EQ(trace["peak"]["record"].number(), 12);
  EXPECT_EQ(trace["pid"].number(), 77);
  EXPECT_EQ(trace["complete"].scalar, "true");
  EXPECT_EQ(trace["losses"].size(), 0u);
  const auto& second = json["runs"][0]["traces"][1];
  EXPECT_EQ(second["complete"].scalar, "false");
  EXPECT_EQ(second["losses"][0]["what"].scalar, "out of sync");
  EXPECT_EQ(second["losses"][0]["count"].number(), 3);
}

TEST(Report, ListsByEveryKeyMergeEqualNamesOfAllTraces) {
  const struct {
    group_key by;
    std::vector<std::pair<std::string, long long>> rows;  // bytes
  } cases[] = {
      {group_key::id, {{"oic core", 1600}, {"oic log", 60}}},
      {group_key::color, {{"oic core / small", 1600}, {"oic log / large", 60}}},
      {group_key::line, {{"order.c:24", 1000}, {"log.c:7", 660}}},
      {group_key::function, {{"shop:take<int>", 1000}, {"app:main", 660}}},
      {group_key::process, {{"server", 1060}, {"worker", 600}}},
      {group_key::query, {{"(no finished SQL operation)", 1660}}},
  };
  for (const auto& [by, rows] : cases) {
    const auto json = read_json(printed_json(sample(), {.lists = {{measure::allocated, by}}}));
    const auto& list = json["runs"][0]["lists"][0];
    EXPECT_EQ(list["by"].scalar, name_of(by));
    EXPECT_EQ(list["of"].scalar, "allocated");
    EXPECT_EQ(list["total"]["bytes"].number(), 1660);
    ASSERT_EQ(list["rows"].size(), rows.size()) << name_of(by);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      EXPECT_EQ(list["rows"][i]["name"].scalar, rows[i].first);
      EXPECT_EQ(list["rows"][i]["bytes"].number(), rows[i].second) << rows[i].first;
    }
  }
  const auto json =
      read_json(printed_json(sample(), {.lists = {{measure::leaked, group_key::path}}}));
  const auto& rows = json["runs"][0]["lists"][0]["rows"];
  ASSERT_EQ(rows.size(), 2u);  // 600 bytes each: more blocks come first
  EXPECT_EQ(rows[0]["blocks"].number(), 6);
  ASSERT_EQ(rows[0]["frames"].size(), 2u);
  EXPECT_EQ(rows[0]["frames"][0].scalar, "app:main");
  EXPECT_EQ(rows[0]["frames"][1].scalar, "shop:take<int>");
  EXPECT_EQ(rows[1]["frames"].size(), 1u);
}

TEST(Report, TopCutsRowsButNotTheTotal) {
  made_profile trace;
  for (int i = 0; i < 5; ++i) {
    trace.leak({.line = "a.c:" + std::to_string(i)}, 1, 100);  // alike: in the order of their names
  }
  const auto run = run_of("R1", {trace.trace});
  const auto json = read_json(
      printed_json(run, {.lists = {{measure::leaked, group_key::line}}, .top = std::size_t{2}}));
  const auto& list = json["runs"][0]["lists"][0];
  EXPECT_EQ(list["total"]["bytes"].number(), 500);
  ASSERT_EQ(list["rows"].size(), 2u);
  EXPECT_EQ(list["rows"][1]["name"].scalar, "a.c:1");
  EXPECT_NE(printed(run, {.lists = {{measure::leaked, group_key::line}}}, {}, 2)
                .find("... and 3 more: 300 B in 3 blocks\n"),
            std::string::npos);
}

TEST(Report, FiltersLookAtEveryNameOfAGroup) {
  const struct {
    filter_options filter;
    long long bytes;  // allocated
  } cases[] = {
      {{.focus = "take<"}, 1000},
      {{.focus = "^app:main$"}, 1660},  // an outer function counts as well
      {{.ignore = "shop:"}, 660},
      {{.focus = "log\\.c", .ignore = "large"}, 600},
      {{.focus = "oic log / l"}, 60},
      {{.focus = "worker"}, 600},
      {{.process = "server"}, 1060},
      {{.process = "101"}, 1660},  // the pid of both
      {{.focus = "finished SQL"}, 1660},
      {{.focus = "nowhere"}, 0},
  };
  for (const auto& [filter, bytes] : cases) {
    const auto json = read_json(
        printed_json(sample(), {.lists = {{measure::allocated, group_key::id}}, .filter = filter}));
    const auto& run = json["runs"][0];
    EXPECT_EQ(run["lists"][0]["total"]["bytes"].number(), bytes) << filter.in_words();
    EXPECT_EQ(run["traces"][0]["allocated"]["bytes"].number() +
                  run["traces"][1]["allocated"]["bytes"].number(),
              bytes)
        << filter.in_words();
    EXPECT_GT(run["filter"].size(), 0u);
    EXPECT_NE(printed(sample(), {.filter = filter}).find("Filtered by " + filter.in_words()),
              std::string::npos);
  }
  run_report report;
  std::string error;
  EXPECT_FALSE(make_report(sample(), {.filter = {.focus = "("}}, report, error));
  EXPECT_NE(error.find("'('"), std::string::npos) << error;
  EXPECT_FALSE(make_report(sample(), {.filter = {.process = "nobody"}}, report, error));
  EXPECT_NE(error.find("'nobody'"), std::string::npos) << error;
}

TEST(Report, NamesOfAnyBytesMakeValidJsonAndPrintableText) {
  const std::string hostile = "a\xff\x1b[31m\"\\\n\xed\xa0\x80,\x7f";
  made_profile trace(hostile);
  trace.leak({.line = hostile,
              .path = {hostile + ":" + hostile},
              .id = hostile,
              .color = hostile,
              .process = hostile,
              .query = hostile},
             1, 10);
  trace.trace.program = trace.trace.user = trace.trace.description = hostile;
  trace.trace.losses = {{hostile, 1, hostile}};
  trace.trace.notes = {hostile};
  const auto run = run_of(hostile, {trace.trace});
  std::vector<list_choice> lists;
  for (std::size_t key = 0; key < key_count; ++key) {
    lists.push_back({measure::leaked, static_cast<group_key>(key)});
  }
  const auto json = read_json(printed_json(run, {.lists = lists}));
  const std::string replaced =
      "a\xef\xbf\xbd\x1b[31m\"\\\n\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd,\x7f";
  EXPECT_EQ(json["runs"][0]["run"].scalar, replaced);
  EXPECT_EQ(json["runs"][0]["lists"][2]["rows"][0]["name"].scalar, replaced);
  const std::string text = printed(run, {.lists = lists});
  EXPECT_EQ(text.find_first_of("\x1b\x7f\xff"), std::string::npos);
  EXPECT_NE(text.find("a??[31m\"\\????,?"), std::string::npos) << text;
  const std::string csv = printed(run, {.lists = lists}, {.format = output_format::csv});
  EXPECT_NE(csv.find("\"a\xff\x1b[31m\"\"\\\n"), std::string::npos) << csv;
}

TEST(Report, ALossCannotBeOverlooked) {
  const std::string text = printed(sample(), {});
  EXPECT_NE(text.find("NOT COMPLETE"), std::string::npos);
  EXPECT_NE(text.find("3 x out of sync, first: kiv.78.000.kivdat, byte 17"), std::string::npos)
      << text;
  EXPECT_NE(text.find("This run is not known to be complete: 1 trace with losses"),
            std::string::npos);
  auto rows = run_of("R1", {made_profile().trace});
  rows.traces[0].from_rows = true;
  EXPECT_NE(printed(rows, {}).find("computed from CSV tables"), std::string::npos);
  EXPECT_EQ(read_json(printed_json(rows, {}))["runs"][0]["traces"][0]["complete"].scalar, "false");
}

TEST(Report, TextAsItIsPrinted) {
  auto run = sample();
  run.traces.pop_back();
  EXPECT_EQ(printed(run, {.lists = {{measure::leaked, group_key::path},
                                    {measure::peak, group_key::line},
                                    {measure::temporary, group_key::process}}}),
            R"(Run 'R1'
Process 77: app
  complete     yes
  when         2023-11-14 22:13:20.005 to 2023-11-14 22:14:20.250, 1m 00.245s
  records      16 of memory, 1 process, 2 allocation ids
  heap         4.0 KiB grown, 0 B of gaps
  live memory  ████████▄▄▄▄▄▄▄▄
               peak 530 B (848 B with rounding) at record 12, 2023-11-14 22:13:21.000
               end  0 B

                    with-free  rounded up  blocks  no-free  rounded up  blocks
  allocated            1000 B     1.6 KiB      10     60 B        96 B       6
  freed                 300 B       480 B       3      0 B         0 B       0
  leaked                600 B       960 B       6      0 B         0 B       0
  reset                 100 B       160 B       1      0 B         0 B       0
  released                0 B         0 B       0     20 B        32 B       2
  live at the end       400 B       640 B       4     40 B        64 B       4
  live at the peak      500 B       800 B       5     30 B        48 B       3
  temporary              90 B       144 B       1      0 B         0 B       0

Leaked by call path: 600 B in 6 blocks
  bytes    share  blocks  call path, innermost function first
  600 B  100.0 %       6  shop:take<int>
                          app:main

Live at the peak by source line: 530 B in 8 blocks
  bytes   share  blocks  no-free  source line
  500 B  94.3 %       5      0 B  order.c:24
   30 B   5.7 %       3     30 B  log.c:7

Temporary by process: 90 B in 1 block
  bytes    share  blocks  process
   90 B  100.0 %       1  server (101)
)");
}

}  // namespace
}  // namespace kiv::report
