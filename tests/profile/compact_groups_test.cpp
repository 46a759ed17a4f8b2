#include "profile/compact_groups.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "profile/block_groups.h"

namespace kiv::test {
namespace {

constexpr figure ends[] = {figure::freed, figure::left_with_id, figure::reset, figure::released};

// The same as plain sums, every peak copied for all groups at once.
struct plain_groups {
  std::vector<group_figures> all, aside;  // nothing of those aside is live

  void peak() {
    for (auto* groups : {&all, &aside}) {
      for (auto& one : *groups) one[figure::at_peak] = one[figure::live];
    }
  }
};

struct live_block {
  compact_groups::place group;
  amount made, now;
};

// Some groups get one block, some many; blocks are resized, ended, moved to other groups. Places
// of groups without blocks are given to others.
TEST(CompactGroups, GiveTheFiguresOfPlainSums) {
  std::mt19937 random(7);
  const auto below = [&](std::uint64_t limit) { return random() % limit; };
  for (int round = 0; round < 20; ++round) {
    compact_groups groups;
    plain_groups plain;
    std::vector<live_block> live;
    std::string aside;
    std::set<compact_groups::place> released;
    const auto add = [&](std::uint32_t line) {
      const compact_groups::place added = groups.add({line, 0, 0, 0});
      EXPECT_EQ(groups.key(added).line, line);
      EXPECT_TRUE(groups.is_empty(added));
      if (released.erase(added) == 0) plain.all.emplace_back();
      EXPECT_EQ(groups.size(), plain.all.size());
      EXPECT_EQ(groups.released(), released.size());
      return added;
    };
    const auto release = [&](compact_groups::place which) {
      groups.release(which);
      released.insert(which);
    };
    for (int step = 0; step < 3000; ++step) {
      if (plain.all.size() == released.size() || below(3) == 0) {
        add(static_cast<std::uint32_t>(step));
      }
      const auto group = static_cast<compact_groups::place>(below(plain.all.size()));
      if (released.contains(group)) continue;
      const auto choice = below(20);
      if (choice < 9) {
        // Now and then a size that 32 bits do not hold.
        const std::uint64_t size = below(50) == 0 ? 5'000'000'000 : below(100);
        const amount block{1, size, size + below(16)};
        groups.make_block(group, block.bytes, block.tot_bytes);
        plain.all[group][figure::made] += block;
        plain.all[group][figure::live] += block;
        live.push_back({group, block, block});
      } else if (choice < 15 && !live.empty()) {
        const auto which = static_cast<std::ptrdiff_t>(below(live.size()));
        const live_block block = live[static_cast<std::size_t>(which)];
        live.erase(live.begin() + which);
        const figure how = ends[below(4)];
        groups.end_block(block.group, how, block.now);
        group_figures& sums = plain.all[block.group];
        sums[figure::live] -= block.now;
        sums[how] += block.now;
        if (how == figure::freed && below(2) == 0) {
          groups.count_temporary(block.group, block.made);
          sums[figure::temporary] += block.made;
        }
      } else if (choice < 16 && !live.empty()) {
        live_block& block = live[below(live.size())];
        groups.resize_block(block.group, 3, std::uint64_t(0) - 2);
        plain.all[block.group][figure::live] += {0, 3, std::uint64_t(0) - 2};
        ++plain.all[block.group].resizes;
        block.now += {0, 3, std::uint64_t(0) - 2};
      } else if (choice < 17) {
        const auto to = static_cast<compact_groups::place>(below(plain.all.size()));
        if (to == group || released.contains(to)) continue;
        groups.move_figures(group, to);
        plain.all[to] += plain.all[group];
        plain.all[group] = {};
        for (auto& block : live) {
          if (block.group == group) block.group = to;
        }
        release(group);
      } else if (choice < 18) {
        groups.peak_reached();
        plain.peak();
      } else if (choice < 19 && !groups.is_empty(group) && groups.is_over(group)) {
        groups.save(group, aside);
        groups.forget(group);
        released.insert(group);
        plain.aside.push_back(plain.all[group]);
        plain.all[group] = {};
      }
    }
    groups.settle_peaks();
    std::string_view saved = aside;
    for (const group_figures& one : plain.aside) {
      const compact_groups::place place = add(0);
      ASSERT_TRUE(groups.load(saved, place));
      plain.all[place] = one;
    }
    EXPECT_FALSE(groups.load(saved, add(0)));
    for (compact_groups::place i = 0; i < groups.size(); ++i) {
      const group_figures all = groups.get(i);
      EXPECT_EQ(all.figures, plain.all[i].figures) << round << ' ' << i;
      EXPECT_EQ(all.resizes, plain.all[i].resizes);
    }
  }
}

TEST(BlockGroups, GiveBackWhatWasPutIn) {
  std::mt19937_64 random(11);
  std::vector<block_group> put;
  block_groups groups;
  for (std::uint32_t i = 0; i < 2000; ++i) {
    block_group one;
    one.no_free = i % 3 == 0;
    one.id = i % 7;
    one.color = i % 5;
    one.line = i;
    one.path = i / 2;
    one.process = i % 2;
    one.query = i % 11;
    one.resizes = i % 10 == 0 ? 1 : 0;
    const amount block{i % 4, random() >> (i % 64), i};
    for (auto& f : one.figures) f = random() % 3 == 0 ? block : amount{};
    put.push_back(one);
    groups.push_back(one);
  }
  ASSERT_EQ(groups.size(), put.size());
  std::size_t i = 0;
  for (const block_group& got : groups) {
    const block_group& one = put[i++];
    EXPECT_EQ(std::tie(got.no_free, got.id, got.color, got.line, got.path, got.process, got.query,
                       got.resizes, got.figures),
              std::tie(one.no_free, one.id, one.color, one.line, one.path, one.process, one.query,
                       one.resizes, one.figures));
  }
}

// Two keys may have the same names, and groups without blocks may lie between.
TEST(BlockGroups, JoinGroupsWithTheSameNames) {
  compact_groups groups;
  for (std::uint32_t line = 0; line < 6; ++line) groups.add({line, 4, line % 2, 0});
  for (compact_groups::place i = 0; i < 6; ++i) {
    if (i != 1) groups.make_block(i, 10 + i, 16);
  }
  groups.make_block(5, 1, 16);
  block_groups joined;
  joined.adopt(std::move(groups), {{7, 7, 7, 8, 7, 8}, {{1, 2}, {3, 4}}, {{5, 6, true}}}, true);
  ASSERT_EQ(joined.size(), 2u);
  const block_group first = joined[0], second = joined[1];
  EXPECT_EQ(first.line, 7u);
  EXPECT_EQ(first.color, 2u);
  EXPECT_EQ(first[figure::made], (amount{3, 10 + 12 + 14, 48}));
  EXPECT_EQ(second.line, 8u);
  EXPECT_EQ(second.id, 3u);
  EXPECT_TRUE(second.no_free);
  EXPECT_EQ(second.path, 4u);
  EXPECT_EQ(second[figure::made], (amount{3, 13 + 15 + 1, 48}));
}

}  // namespace
}  // namespace kiv::test
