#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "fleet/figures_of_runs.h"
#include "fleet/fleet_options.h"
#include "fleet/times.h"

namespace kiv::test {
namespace {

using fleet::multiple;

TEST(FleetOptions, AMultipleIsADecimalNumberFromOneOn) {
  const struct {
    const char* text;
    std::uint64_t thousandths;  // 0: refused
  } cases[] = {{"1", 1000},
               {"2", 2000},
               {"1.5", 1500},
               {"1.25", 1250},
               {"3.007", 3007},
               {"1000000", 1'000'000'000},
               {"0.999", 0},
               {"0", 0},
               {"1000000.001", 0},
               {"1000001", 0},
               {"1.2345", 0},
               {"1.", 0},
               {".5", 0},
               {"-2", 0},
               {"2x", 0},
               {"2.5x", 0},
               {"1.-5", 0},
               {"1.+5", 0},
               {"", 0},
               {"1e3", 0},
               {"nan", 0},
               {"99999999999999999999", 0}};
  for (const auto& c : cases) {
    const auto read = fleet::parse_multiple(c.text);
    ASSERT_EQ(read ? read->thousandths : 0, c.thousandths) << c.text;
    if (c.thousandths == 0) continue;
    EXPECT_EQ(text_of(*read), c.text);
  }
}

// The limit is exact where the product fits, and the largest sum where it does not.
TEST(FleetOptions, TheLimitOfAMultipleIsExact) {
  constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
  const struct {
    std::uint64_t thousandths, value, limit;
  } cases[] = {{1500, 3, 4},
               {1500, 4, 6},
               {2000, 0, 0},
               {1001, 999, 999},
               {1001, 1000, 1001},
               {2000, 1ull << 60, 1ull << 61},
               {1250, 4'000'000'000'000'000'003, 5'000'000'000'000'000'003},
               {2000, most, most},
               {1'000'000'000, 1ull << 62, most}};
  for (const auto& c : cases) {
    EXPECT_EQ(multiple{c.thousandths}.limit(c.value), c.limit) << c.thousandths << ' ' << c.value;
  }
}

TEST(FleetOptions, BytesHaveUnitsOf1024) {
  const struct {
    const char* text;
    std::int64_t bytes;  // -1: refused
  } cases[] = {{"0", 0},
               {"17", 17},
               {"64K", 65536},
               {"3M", 3 << 20},
               {"1G", 1 << 30},
               {"9007199254740991K", 9'223'372'036'854'774'784},
               {"", -1},
               {"K", -1},
               {"1T", -1},
               {"1KB", -1},
               {"-1", -1},
               {"1.5K", -1},
               {"9007199254740992K", -1},
               {"9223372036854775808", -1}};
  for (const auto& c : cases) {
    const auto read = fleet::parse_bytes(c.text);
    EXPECT_EQ(read ? static_cast<std::int64_t>(*read) : -1, c.bytes) << c.text;
  }
}

TEST(FleetFigures, QuantilesAreValuesThatAreThere) {
  std::vector<std::uint64_t> values;
  EXPECT_EQ(fleet::quantile(values, 50), 0u);
  const struct {
    std::size_t count;
    std::uint64_t median, high;
  } cases[] = {{1, 0, 0},    {2, 1, 1},    {3, 1, 2},     {4, 2, 3},    {19, 9, 18},
               {20, 10, 19}, {21, 10, 19}, {100, 50, 95}, {101, 50, 95}};
  for (const auto& c : cases) {
    while (values.size() < c.count) values.push_back(values.size() * 10);
    EXPECT_EQ(fleet::quantile(values, 50), c.median * 10) << c.count;
    EXPECT_EQ(fleet::quantile(values, 95), c.high * 10) << c.count;
    EXPECT_EQ(fleet::quantile(values, 100), (c.count - 1) * 10) << c.count;
  }
}

TEST(FleetFigures, TheDistanceHasNoDirection) {
  EXPECT_EQ(fleet::distance_of(0, 0), 1);
  EXPECT_EQ(fleet::distance_of(10, 40), 4);
  EXPECT_EQ(fleet::distance_of(40, 10), 4);
  EXPECT_GT(fleet::distance_of(1, 0), 1e300);
  EXPECT_EQ(fleet::times_text(5, 2), "2.50 x");
  EXPECT_EQ(fleet::times_text(5, 0), "-");
}

}  // namespace
}  // namespace kiv::test
