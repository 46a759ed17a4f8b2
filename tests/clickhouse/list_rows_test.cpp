#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "clickhouse/profile_rows.h"

namespace kiv::clickhouse {
namespace {

// A chain of calls whose texts, with all callers, come to some 20 MB in each of two traces.
run_profile deep_run() {
  profile p;
  p.functions = {{"", "(no function)"}, {"lib", std::string(200, 'f')}};
  p.paths = {{0, 0}};
  for (std::uint32_t i = 1; i < 6000; ++i) p.paths.push_back({i - 1, 1});
  return {"deep", {p, p}};
}

TEST(ClickHouseListRows, GoInPiecesOfWholeRows) {
  const run_profile run = deep_run();
  std::vector<std::string> pieces;
  const load_id load{run.name, 5};
  ASSERT_TRUE(insert_list_rows(load, run, [&](std::string rows) {
    pieces.push_back(std::move(rows));
    return true;
  }));
  ASSERT_GT(pieces.size(), 1u);
  std::ptrdiff_t rows = 0;
  for (const auto& piece : pieces) {
    EXPECT_TRUE(piece.starts_with("deep\t5\t") && piece.ends_with('\n'));
    EXPECT_LT(piece.size(), 17u << 20);
    rows += std::ranges::count(piece, '\n');
  }
  EXPECT_EQ(rows, 2 * (6000 + 2)) << "paths and functions";

  std::size_t asked = 0;
  EXPECT_FALSE(insert_list_rows(load, run, [&](const std::string&) { return ++asked < 2; }));
  EXPECT_EQ(asked, 2u) << "none after the one that failed";
}

}  // namespace
}  // namespace kiv::clickhouse
