#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <sstream>

#include "report/call_tree.h"
#include "report/made_profile.h"
#include "report/print_report.h"
#include "report/run_report.h"

// Profiles as large as a trace can make them. What a test would notice is a sum that grows with the
// square of the names: minutes, or gigabytes.
namespace kiv::report {
namespace {

using test::made_profile;
using test::run_of;

constexpr std::uint32_t many = 100'000, deep = 10'000, long_name = 65'536;

std::vector<list_choice> all_lists() {
  std::vector<list_choice> lists;
  for (std::size_t key = 0; key < key_count; ++key) {
    lists.push_back({measure::leaked, static_cast<group_key>(key)});
  }
  return lists;
}

std::string text_of(const run_profile& run) {
  std::vector<run_report> reports(1);
  std::string error;
  EXPECT_TRUE(make_report(run, {.lists = all_lists()}, reports[0], error)) << error;
  std::ostringstream out;
  print_reports(out, reports, {}, 10);
  return out.str();
}

block_group leaking(std::uint32_t line, std::uint32_t path) {
  block_group group;
  group.line = line;
  group.path = path;
  group[figure::left_with_id] = {1, 1, 1};
  return group;
}

long peak_memory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;  // KiB
}

TEST(Bounds, ManyLinesInAChainOfCallsAsDeepAsItGets) {
  made_profile made;
  profile& trace = made.trace;
  for (std::uint32_t i = 1; i <= deep; ++i) {
    trace.functions.push_back({"object", "function" + std::to_string(i)});
    trace.paths.push_back({i - 1, i});
  }
  for (std::uint32_t i = 1; i <= many; ++i) {
    trace.lines.push_back("file.c:" + std::to_string(i));
    trace.groups.push_back(leaking(i, 1 + i % deep));  // all alike: names decide the order
  }
  const auto run = run_of("R", {trace});
  const auto start = std::chrono::steady_clock::now();
  const std::string text = text_of(run);
  EXPECT_LT(text.size(), 20'000u);
  EXPECT_NE(text.find("... and 99,990 more: 97.6 KiB in 99,990 blocks"), std::string::npos);
  EXPECT_NE(text.find("... and 9,990 more"), std::string::npos);
  call_tree tree;
  std::string error;
  ASSERT_TRUE(make_tree(run, {.of = measure::leaked, .min_share = 0}, tree, error)) << error;
  ASSERT_EQ(tree.rows.size(), deep);
  EXPECT_EQ(tree.rows.back().depth, deep - 1);
  EXPECT_EQ(tree.rows.front().inclusive.blocks, many);
  std::ostringstream out;
  print_tree(out, tree, {});
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

TEST(Bounds, LongNamesAreNotJoinedForEveryPair) {
  made_profile made;
  profile& trace = made.trace;
  trace.ids.push_back({1, std::string(long_name, 'i'), ""});
  const std::string object(long_name, 'o');
  const long before = peak_memory();
  for (std::uint32_t i = 1; i <= deep; ++i) {
    trace.colors.push_back({1, i, "colour " + std::to_string(i)});
    block_group group = leaking(0, 0);
    group.id = 1;
    group.color = i;
    trace.groups.push_back(group);
  }
  const auto run = run_of("R", {trace});
  EXPECT_NE(text_of(run).find("... and 9,990 more"), std::string::npos);
  EXPECT_LT(peak_memory() - before, 200 * 1024) << "KiB; all names joined would be 640 MiB";
}

}  // namespace
}  // namespace kiv::report
