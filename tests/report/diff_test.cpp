#include <gtest/gtest.h>

#include <sstream>

#include "report/json_reader.h"
#include "report/made_profile.h"
#include "report/run_diff.h"

namespace kiv::report {
namespace {

using test::made_profile;
using test::read_json;
using test::run_of;

// Line a.c:1 leaks 100 bytes in A and 150 in B, b.c:2 appears in B with 10, c.c:3 stays at 7 and
// d.c:4 goes. Numbers, process ids and the order of names differ between the runs.
run_profile run_a() {
  made_profile trace("A", 1);
  trace.leak({.line = "d.c:4"}, 1, 5).leak({.line = "a.c:1"}, 2, 100).leak({.line = "c.c:3"}, 1, 7);
  return run_of("A", {trace.trace});
}

run_profile run_b() {
  made_profile first("B", 2), second("B", 3);
  first.leak({.line = "c.c:3"}, 1, 7).leak({.line = "b.c:2"}, 1, 10).leak({.line = "a.c:1"}, 1, 90);
  second.leak({.line = "a.c:1"}, 2, 60);
  return run_of("B", {first.trace, second.trace});
}

struct compared {
  run_diff diff;
  std::string text;
};

void compare(const run_profile& a, const run_profile& b, const diff_options& options,
             output_format format, compared& into) {
  std::string error;
  ASSERT_TRUE(make_diff(a, b, options, into.diff, error)) << error;
  std::ostringstream out;
  print_diff(out, into.diff, {.format = format}, 10);
  into.text = out.str();
}

TEST(Diff, JsonHasAllRowsTheTotalAndTheVerdicts) {
  const auto a = run_a(), b = run_b();
  compared result;
  compare(a, b, {.limits = {*parse_growth_limit("leaked=40"), *parse_growth_limit("peak=0")}},
          output_format::json, result);
  const auto json = read_json(result.text);
  EXPECT_EQ(json["a"]["run"].scalar, "A");
  EXPECT_EQ(json["b"]["complete"].scalar, "true");
  EXPECT_EQ(json["by"].scalar, "line");
  EXPECT_EQ(json["of"].scalar, "leaked");
  EXPECT_EQ(json["total"]["a"].number(), 112);
  EXPECT_EQ(json["total"]["b"].number(), 167);
  EXPECT_EQ(json["total"]["change"].number(), 55);
  const struct {
    const char* name;
    long long a, b, change;
  } rows[] = {
      {"a.c:1", 100, 150, 50}, {"b.c:2", 0, 10, 10}, {"c.c:3", 7, 7, 0}, {"d.c:4", 5, 0, -5}};
  ASSERT_EQ(json["rows"].size(), 4u);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(json["rows"][i]["name"].scalar, rows[i].name);
    EXPECT_EQ(json["rows"][i]["a"].number(), rows[i].a);
    EXPECT_EQ(json["rows"][i]["b"].number(), rows[i].b);
    EXPECT_EQ(json["rows"][i]["change"].number(), rows[i].change);
  }
  const auto& limit = json["limits"][0];
  EXPECT_EQ(limit["of"].scalar, "leaked");
  EXPECT_EQ(limit["limit"].scalar, "40");
  EXPECT_EQ(limit["passed"].scalar, "true");
  ASSERT_EQ(limit["by"].size(), 2u);
  EXPECT_EQ(limit["by"][0].scalar, "total");
  EXPECT_EQ(limit["by"][1].scalar, "a.c:1");
  EXPECT_EQ(json["limits"][1]["passed"].scalar, "false");
}

TEST(Diff, ALimitWatchesEveryNameAndTheTotal) {
  const struct {
    const char* limit;
    bool passed;
  } cases[] = {
      {"leaked=55", false},      // the total grew by 55, not by more
      {"leaked=54", true},       //
      {"leaked=1K", false},      //
      {"leaked=50%", true},      // what is new grew without measure
      {"allocated=1M", false},   //
      {"live=0", false},         // nothing is live in either
      {"allocated=49.5", true},  //
  };
  const auto a = run_a(), b = run_b();
  for (const auto& [limit, passed] : cases) {
    compared result;
    compare(a, b, {.top = std::size_t{1}, .limits = {*parse_growth_limit(limit)}},
            output_format::csv, result);
    EXPECT_EQ(result.diff.any_passed(), passed) << limit;
    EXPECT_EQ(verdict_in_words(result.diff).empty(), !passed) << limit;
  }
  compared back;
  compare(b, a, {.limits = {*parse_growth_limit("leaked=4")}}, output_format::csv, back);
  EXPECT_TRUE(back.diff.any_passed());  // d.c:4 grew by 5, though the total shrank
  EXPECT_EQ(verdict_in_words(back.diff), "leaked grew by more than 4: d.c:4 by 5 bytes");
}

TEST(Diff, OnlyCompleteRunsAreJudged) {
  const auto a = run_a();
  auto b = run_b();
  b.traces[1].losses = {{"cut short", 1, ""}};
  const diff_options options{.limits = {*parse_growth_limit("leaked=0")}};
  compared result;
  compare(a, b, options, output_format::json, result);
  EXPECT_FALSE(result.diff.judged);
  EXPECT_FALSE(result.diff.any_passed());
  EXPECT_NE(verdict_in_words(result.diff).find("complete: run 'B'"), std::string::npos);
  EXPECT_EQ(read_json(result.text)["limits"][0]["passed"].scalar, "null");
  EXPECT_EQ(read_json(result.text)["b"]["complete"].scalar, "false");
  auto all_the_same = options;
  all_the_same.allow_incomplete = true;
  compared judged;
  compare(a, b, all_the_same, output_format::json, judged);
  EXPECT_TRUE(judged.diff.any_passed());
  compared none;
  compare(a, run_of("B", {}), options, output_format::json, none);
  EXPECT_FALSE(none.diff.judged) << "a run without traces is not complete";
}

TEST(Diff, TextAndCsvAsTheyArePrinted) {
  const auto a = run_a(), b = run_b();
  const diff_options options{.limits = {*parse_growth_limit("leaked=20%")}};
  compared text, csv;
  compare(a, b, options, output_format::terminal, text);
  EXPECT_EQ(text.text, R"(Run 'A' -> run 'B': leaked, by source line
  before  after  change  blocks        source line
   100 B  150 B   +50 B       2  -> 3  a.c:1
     0 B   10 B   +10 B       0  -> 1  b.c:2
     5 B    0 B    -5 B       1  -> 0  d.c:4
  1 other unchanged
  together 112 B in 4 blocks -> 167 B in 5 blocks, +55 B
  limit leaked=20%: passed by the total (112 B -> 167 B, +55 B) and 2 names
)");
  compare(a, b, options, output_format::csv, csv);
  EXPECT_EQ(csv.text, R"(kind,run_a,run_b,by,of,name,a,b,change,verdict
complete,A,B,,,,1,1,,
total,A,B,line,leaked,,112,167,55,
row,A,B,line,leaked,a.c:1,100,150,50,
row,A,B,line,leaked,b.c:2,0,10,10,
row,A,B,line,leaked,c.c:3,7,7,0,
row,A,B,line,leaked,d.c:4,5,0,-5,
limit,A,B,line,leaked,20%,112,167,55,passed
passed,A,B,line,leaked,a.c:1,100,150,50,20%
passed,A,B,line,leaked,b.c:2,0,10,10,20%
)");
}

TEST(GrowthLimit, IsAMeasureAndBytesOrAPercentage) {
  EXPECT_EQ(parse_growth_limit("leaked=1.5K")->value, 1536);
  EXPECT_EQ(parse_growth_limit("peak=2G")->value, 2147483648.0);
  EXPECT_TRUE(parse_growth_limit("temporary=5%")->percent);
  for (const char* bad : {"", "64K", "leaked", "leaked=", "=5", "size=5", "leaked=K", "leaked=5%%",
                          "leaked=-1", "leaked=nan", "leaked=1e999", "leaked=5 K", "leaked= 5"}) {
    EXPECT_FALSE(parse_growth_limit(bad)) << bad;
  }
}

}  // namespace
}  // namespace kiv::report
