#include "clickhouse/path_texts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>

#include "store/run_store.h"

namespace kiv::clickhouse {
namespace {

// Names that SQLite counts in ways of its own: characters of several bytes, bytes that are none,
// and zeros, at which its functions of texts end.
std::string odd_name(std::mt19937& random) {
  static const std::string pieces[] = {"a",    "\xc3\xa4", "\xe2\x82\xac",      "\xff",
                                       "\x80", "\xc3",     std::string(1, '\0')};
  std::string name;
  const std::size_t length = random() % 900;
  // Zeros in few names, else no text is ever long.
  const std::size_t kinds = random() % 8 == 0 ? 7 : 6;
  for (std::size_t i = 0; i < length; ++i) name += pieces[random() % kinds];
  return name;
}

profile profile_with_paths(std::uint32_t seed) {
  std::mt19937 random(seed);
  profile p;
  p.run = "R";
  p.ids = {{0, "unknown id", ""}};
  p.colors = {{0, 0, "unknown colour"}};
  p.lines = {"unknown line"};
  p.processes = {{0, "default process"}};
  p.queries = {"(no finished SQL operation)"};
  p.functions = {{"", "unknown"}};
  for (int i = 0; i < 12; ++i)
    p.functions.push_back({i % 3 == 0 ? "" : odd_name(random), odd_name(random)});
  p.paths = {{0, 0}};
  for (std::uint32_t i = 1; i < 60; ++i) {
    const std::uint32_t least = i < 12 ? 0 : i - 12;
    p.paths.push_back({least + static_cast<std::uint32_t>(random() % (i - least)),
                       static_cast<std::uint32_t>(random() % p.functions.size())});
  }
  return p;
}

TEST(PathTexts, AreThoseOfSqlitesView) {
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    const profile p = profile_with_paths(seed);
    store::run_store store;
    std::string error;
    const std::string file = testing::TempDir() + "path_texts_" + std::to_string(seed) + ".db";
    ASSERT_TRUE(store.open(file, store::open_mode::create, error)) << error;
    ASSERT_EQ(store.save({"R", {p}}, {}, error), store::save_result::saved) << error;
    auto texts = path_texts(p);
    std::ranges::sort(texts, {}, &path_text::order);
    const auto rows = store.view("paths", std::nullopt, error);
    ASSERT_TRUE(rows) << error;
    for (const auto& want : texts) {
      ASSERT_TRUE(rows->step());
      EXPECT_EQ(rows->integer(2), want.depth) << seed;
      EXPECT_EQ(rows->text(3), want.text) << seed;
    }
    EXPECT_FALSE(rows->step());
    store.close();
    std::remove(file.c_str());
  }
}

}  // namespace
}  // namespace kiv::clickhouse
