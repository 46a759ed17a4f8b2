#include <gtest/gtest.h>

#include <sstream>

#include "report/call_tree.h"
#include "report/json_reader.h"
#include "report/made_profile.h"

namespace kiv::report {
namespace {

using test::made_profile;
using test::read_json;
using test::run_of;

// main leaks 10 itself; main > a 20, main > a > b 300, main > b 70; other 100; and one block of 5
// without a call path.
run_profile forest() {
  made_profile trace;
  trace.leak({.path = {"x:main"}}, 1, 10)
      .leak({.path = {"x:main", "x:b"}}, 1, 70)
      .leak({.path = {"x:main", "x:a", "x:b"}}, 3, 300)
      .leak({.path = {"x:main", "x:a"}}, 1, 20)
      .leak({.path = {"x:other"}}, 1, 100)
      .leak({.path = {}}, 1, 5);
  return run_of("T", {trace.trace});
}

std::string printed(const run_profile& run, const tree_options& options,
                    output_format format = output_format::terminal) {
  call_tree tree;
  std::string error;
  EXPECT_TRUE(make_tree(run, options, tree, error)) << error;
  std::ostringstream out;
  print_tree(out, tree, {.format = format});
  return out.str();
}

TEST(Tree, JsonHasInclusiveAndSelfSumsLargestFirst) {
  const auto json =
      read_json(printed(forest(), {.of = measure::leaked, .min_share = 0}, output_format::json));
  const struct {
    const char* function;
    long long depth, inclusive, self;
  } rows[] = {{"(no call path)", 0, 5, 5}, {"x:main", 0, 400, 10}, {"x:a", 1, 320, 20},
              {"x:b", 2, 300, 300},        {"x:b", 1, 70, 70},     {"x:other", 0, 100, 100}};
  EXPECT_EQ(json["total"]["bytes"].number(), 505);
  ASSERT_EQ(json["rows"].size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const auto& row = json["rows"][i];
    EXPECT_EQ(row["function"].scalar, rows[i].function);
    EXPECT_EQ(row["depth"].number(), rows[i].depth) << i;
    EXPECT_EQ(row["inclusive"]["bytes"].number(), rows[i].inclusive) << i;
    EXPECT_EQ(row["self"]["bytes"].number(), rows[i].self) << i;
  }
  EXPECT_EQ(json["left_out"]["calls"].number(), 0);
}

TEST(Tree, TheShareCutsAndTheRestIsCounted) {
  EXPECT_EQ(printed(forest(), {.of = measure::leaked, .min_share = 20}),
            R"(Run 'T': leaked, by call path: 505 B in 8 blocks
  with callees   share  itself  blocks  function
         400 B  79.2 %    10 B       1  x:main
         320 B  63.4 %    20 B       1    x:a
         300 B  59.4 %   300 B       3      x:b
  ... and 3 calls that hold less than 20 % each: 175 B in 3 blocks
)");
  const auto json =
      read_json(printed(forest(), {.of = measure::leaked, .min_share = 20}, output_format::json));
  EXPECT_EQ(json["left_out"]["bytes"].number(), 175);
  EXPECT_NE(printed(forest(), {.of = measure::live}).find("0 B in 0 blocks"), std::string::npos);
}

TEST(Tree, TracesOfARunShareOneTreeAndFiltersApply) {
  auto run = forest();
  run.traces.push_back(made_profile("T", 2).leak({.path = {"x:main", "x:a"}}, 1, 7).trace);
  const auto json =
      read_json(printed(run, {.of = measure::leaked, .min_share = 0, .filter = {.focus = "x:a"}},
                        output_format::json));
  ASSERT_EQ(json["rows"].size(), 3u);
  EXPECT_EQ(json["rows"][0]["inclusive"]["bytes"].number(), 327);
  EXPECT_EQ(json["rows"][0]["self"]["bytes"].number(), 0);
  EXPECT_EQ(json["rows"][1]["self"]["bytes"].number(), 27);
}

TEST(Tree, OfALongChainPeopleSeeTheEnds) {
  std::vector<std::string> path;
  for (int i = 0; i < 100; ++i) path.push_back("x:f" + std::to_string(i));
  const auto run = run_of("T", {made_profile().leak({.path = path}, 1, 10).trace});
  const std::string text = printed(run, {.of = measure::leaked});
  EXPECT_EQ(std::ranges::count(text, '\n'), 2 + 4 + 1 + 4) << text;
  EXPECT_NE(text.find("... 92 calls deeper ..."), std::string::npos) << text;
  EXPECT_NE(text.find("[99] x:f99"), std::string::npos) << text;
}

}  // namespace
}  // namespace kiv::report
