#include <gtest/gtest.h>

#include <sstream>

#include "report/json_reader.h"
#include "report/made_profile.h"
#include "report/run_trend.h"

namespace kiv::report {
namespace {

using test::made_profile;
using test::read_json;
using test::run_of;

// Line a.c:1 leaks 10, 20, 30; b.c:2 leaks 0, 0, 25; c.c:3 leaks 50, 5, 50.
void add_runs(run_trend& trend) {
  const std::uint64_t a[] = {10, 20, 30}, b[] = {0, 0, 25}, c[] = {50, 5, 50};
  for (std::size_t i = 0; i < 3; ++i) {
    made_profile trace;
    if (b[i] > 0) trace.leak({.line = "b.c:2"}, 1, b[i]);
    trace.leak({.line = "a.c:1"}, 1, a[i]).leak({.line = "c.c:3"}, 1, c[i]);
    if (i == 1) trace.trace.losses = {{"cut short", 1, ""}};
    std::string error;
    ASSERT_TRUE(trend.add(run_of("R" + std::to_string(i), {trace.trace}), error)) << error;
  }
}

std::string printed(const run_trend& trend, output_format format) {
  std::ostringstream out;
  print_trend(out, trend, {.format = format}, 10);
  return out.str();
}

TEST(Trend, TotalsPerRunAndWhatGrewMost) {
  run_trend trend({});
  add_runs(trend);
  trend.finish({});
  const auto json = read_json(printed(trend, output_format::json));
  ASSERT_EQ(json["runs"].size(), 3u);
  EXPECT_EQ(json["runs"][1]["run"].scalar, "R1");
  EXPECT_EQ(json["runs"][1]["complete"].scalar, "false");
  EXPECT_EQ(json["runs"][2]["leaked"]["bytes"].number(), 105);
  const struct {
    const char* name;
    long long first, last, change, grew;
  } rows[] = {{"b.c:2", 0, 25, 25, 1}, {"a.c:1", 10, 30, 20, 2}, {"c.c:3", 50, 50, 0, 1}};
  ASSERT_EQ(json["rows"].size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    const auto& row = json["rows"][i];
    EXPECT_EQ(row["name"].scalar, rows[i].name);
    EXPECT_EQ(row["bytes"][0].number(), rows[i].first) << i;
    EXPECT_EQ(row["bytes"][2].number(), rows[i].last) << i;
    EXPECT_EQ(row["change"].number(), rows[i].change) << i;
    EXPECT_EQ(row["grew"].number(), rows[i].grew) << i;
  }
  EXPECT_EQ(printed(trend, output_format::terminal),
            R"(3 runs, in the order of their import
  leaked  live at the peak  live at the end  allocated  temporary  complete  run
    60 B               0 B              0 B       60 B        0 B  yes       R0
    25 B               0 B              0 B       25 B        0 B  NO        R1
   105 B               0 B              0 B      105 B        0 B  yes       R2

Leaked by source line, what grew most
  first  last  change    grew       source line
    0 B  25 B   +25 B  1 of 2    █  b.c:2
   10 B  30 B   +20 B  2 of 2  ▃▆█  a.c:1
   50 B  50 B     0 B  1 of 2  █▁█  c.c:3
)");
}

}  // namespace
}  // namespace kiv::report
