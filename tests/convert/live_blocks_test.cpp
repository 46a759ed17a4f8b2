#include "convert/live_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <vector>

namespace kiv::test {
namespace {

TEST(LiveBlocks, EndAsStacksOfEqualBlocksDo) {
  std::mt19937 random(7);
  convert::live_blocks blocks;
  std::map<std::uint32_t, std::vector<std::uint32_t>> live;  // by allocation, oldest first
  std::set<std::uint32_t> numbers;
  std::size_t most = 0;
  for (int step = 0; step < 20'000; ++step) {
    const auto allocation = static_cast<std::uint32_t>(random() % 20);
    std::vector<std::uint32_t>& equal = live[allocation];
    const auto what = random() % 5;
    if (what < 2) {
      const std::uint32_t block = blocks.add(allocation);
      EXPECT_TRUE(numbers.insert(block).second) << "a live block has that number";
      equal.push_back(block);
      most = std::max(most, numbers.size());
      EXPECT_LT(block, most) << "numbers are used again";
    } else if (what == 2 && !equal.empty()) {
      const auto chosen = equal.begin() + static_cast<std::ptrdiff_t>(random() % equal.size());
      EXPECT_FALSE(blocks.remove(allocation + 1, *chosen));
      EXPECT_TRUE(blocks.remove(allocation, *chosen));
      EXPECT_FALSE(blocks.remove(allocation, *chosen));
      numbers.erase(*chosen);
      equal.erase(chosen);
    } else {
      const std::uint32_t youngest = equal.empty() ? convert::live_blocks::none : equal.back();
      EXPECT_EQ(blocks.remove_youngest(allocation), youngest);
      if (equal.empty()) continue;
      numbers.erase(youngest);
      equal.pop_back();
    }
  }
  EXPECT_FALSE(blocks.remove(0, 1'000'000));
}

}  // namespace
}  // namespace kiv::test
