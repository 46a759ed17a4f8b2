#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "util/number_table.h"
#include "util/object_pool.h"

namespace kiv {
namespace {

constexpr std::uint32_t low_limit = 64;
const std::vector<std::uint32_t> numbers = {64, 5, 0xffffffff, 0, 65, 70, 0x80000000, 63, 5'000};

void keep(std::optional<int>& slot, int value) { slot = value; }
void keep(std::unique_ptr<int>& slot, int value) { slot = std::make_unique<int>(value); }

template <class Slot>
class NumberTable : public testing::Test {};
using slots = testing::Types<std::optional<int>, std::unique_ptr<int>>;
TYPED_TEST_SUITE(NumberTable, slots);

TYPED_TEST(NumberTable, KeepsTheLatestValueOfAnyNumberInAscendingOrder) {
  number_table<TypeParam, low_limit> table;
  std::map<std::uint32_t, int> model;
  table.expect(0xffffffff);
  for (int value = 0; value < 18; ++value) {  // every number comes twice
    const std::uint32_t number = numbers[static_cast<std::size_t>(value) % numbers.size()];
    EXPECT_EQ(table.find(number) != nullptr, model.contains(number)) << number;
    model[number] = value;
    TypeParam slot;
    keep(slot, value);
    EXPECT_EQ(table.assign(number, std::move(slot)), value) << number;

    std::vector<int> expected, ascending, any;
    for (const auto& [known, of_known] : model) {
      expected.push_back(of_known);
      ASSERT_NE(table.find(known), nullptr) << known;
      EXPECT_EQ(*std::as_const(table).find(known), of_known) << known;
    }
    table.for_each_ascending([&](int one) { ascending.push_back(one); });
    table.for_each([&](int& one) { any.push_back(one); });
    EXPECT_EQ(ascending, expected);
    EXPECT_TRUE(std::is_permutation(any.begin(), any.end(), expected.begin(), expected.end()));
  }
  for (const std::uint32_t number : {1U, 4U, 6U, 62U, 66U, 4'999U, 0x7fffffffU, 0xfffffffeU})
    EXPECT_EQ(table.find(number), nullptr) << number;
}

TEST(NumberTableOfPointers, ValuesStayInTheirPlacesWhileOthersCome) {
  number_table<std::unique_ptr<int>, low_limit> table;
  std::map<std::uint32_t, int*> places;
  for (const std::uint32_t number : numbers)
    places[number] = &table.assign(number, std::make_unique<int>(7));
  for (std::uint32_t number = 0; number < 10'000; ++number) {
    if (!places.contains(number)) table.assign(number, std::make_unique<int>(8));
  }
  for (const auto& [number, place] : places) EXPECT_EQ(table.find(number), place) << number;
}

struct counted {
  explicit counted(int& count, std::uint64_t value) : alive(count), number(value) { ++alive; }
  ~counted() { --alive; }
  counted(const counted&) = delete;
  counted& operator=(const counted&) = delete;
  int& alive;
  std::uint64_t number;
};

TEST(ObjectPool, ObjectsKeepTheirPlacesAndLeaveThemToLaterOnes) {
  int alive = 0;
  object_pool<counted> pool;
  std::vector<object_pool<counted>::pointer> objects;
  std::vector<const counted*> places, left, taken;
  const auto make = [&] { return pool.make(alive, objects.size()); };
  for (int i = 0; i < 100; ++i) objects.push_back(make());
  for (std::size_t i = 0; i < objects.size(); i += 3) {
    left.push_back(objects[i].get());
    objects[i].reset();
  }
  EXPECT_EQ(alive, 66);
  for (std::size_t i = 0; i < objects.size(); i += 3) {
    objects[i] = pool.make(alive, i);
    taken.push_back(objects[i].get());
  }
  EXPECT_TRUE(std::is_permutation(taken.begin(), taken.end(), left.begin(), left.end()));
  for (const auto& object : objects) places.push_back(object.get());
  for (int i = 0; i < 100; ++i) objects.push_back(make());
  for (std::size_t i = 0; i < objects.size(); ++i) {
    EXPECT_EQ(objects[i]->number, i);
    EXPECT_TRUE(i >= places.size() || objects[i].get() == places[i]);
  }
  objects.clear();
  EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace kiv
