#include "clickhouse/literals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "clickhouse/select_text.h"

namespace kiv::clickhouse {
namespace {

using namespace std::string_literals;

std::string every_byte() {
  std::string all;
  for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
  return all;
}

TEST(Literals, EveryByteComesBackFromARow) {
  const std::string all = every_byte();
  tsv_writer out;
  out.add(std::string_view(all));
  out.add_null();
  out.add(std::int64_t{INT64_MIN});
  out.add(std::string_view("\\N"));
  out.add(std::string_view(""));
  out.end_row();
  const std::string row = out.take();
  ASSERT_EQ(std::count(row.begin(), row.end(), '\n'), 1);
  ASSERT_EQ(std::count(row.begin(), row.end(), '\t'), 4);
  tsv_reader reader;
  const auto& fields = reader.read(std::string_view(row).substr(0, row.size() - 1));
  ASSERT_EQ(fields.size(), 5u);
  EXPECT_EQ(fields[0].text, all);
  EXPECT_TRUE(fields[1].is_null);
  EXPECT_EQ(fields[2].text, "-9223372036854775808");
  EXPECT_EQ(fields[3].text, "\\N");
  EXPECT_FALSE(fields[3].is_null);
  EXPECT_EQ(fields[4].text, "");
}

TEST(Literals, ALiteralEndsWhereItsTextEnds) {
  const std::string all = every_byte();
  for (const std::string& text : {all, "'"s, "\\"s, "\\'"s, "a\\"s, "';--"s, ""s}) {
    const std::string literal = text_literal(text);
    ASSERT_TRUE(literal.starts_with('\'') && literal.ends_with('\'')) << literal;
    const std::string inner = literal.substr(1, literal.size() - 2);
    for (std::size_t i = 0; i < inner.size(); ++i) {
      EXPECT_NE(inner[i], '\'') << literal;
      if (inner[i] == '\\') ++i;
      EXPECT_LT(i, inner.size()) << literal;
    }
    std::string back;
    unescape(inner, back);
    EXPECT_EQ(back, text);
  }
}

TEST(Literals, ArraysComeBack) {
  const std::string all = every_byte();
  const std::vector<std::vector<std::string_view>> lists = {
      {}, {""}, {all}, {"a", "b,c", "]", "'", "\\", "['x']"}};
  for (const auto& list : lists) {
    tsv_writer out;
    out.add(list);
    std::vector<std::string> back;
    ASSERT_TRUE(read_array(out.bytes(), back)) << out.bytes();
    EXPECT_TRUE(std::equal(list.begin(), list.end(), back.begin(), back.end())) << out.bytes();
  }
  for (const std::vector<std::int64_t>& list :
       {std::vector<std::int64_t>{}, {0}, {INT64_MIN, -1, 7, INT64_MAX}}) {
    tsv_writer out;
    out.add(list);
    std::vector<std::int64_t> back;
    ASSERT_TRUE(read_array(out.bytes(), back)) << out.bytes();
    EXPECT_EQ(back, list);
  }
}

TEST(Literals, WhatIsNoArrayIsRefused) {
  for (const char* text : {"", "[", "]", "[1", "1]", "[1,]", "[,1]", "[1 2]", "[1]x", "[x]",
                           "[9223372036854775808]"}) {
    std::vector<std::int64_t> numbers;
    EXPECT_FALSE(read_array(text, numbers)) << text;
  }
  for (const char* text :
       {"", "[", "['", "['a", "['a'", "['a\\']", "['a',]", "[a]", "['a']x", "['a' 'b']"}) {
    std::vector<std::string> texts;
    EXPECT_FALSE(read_array(text, texts)) << text;
  }
}

TEST(Literals, MarksOutsideOfTextsAreReplaced) {
  const std::vector<std::string> texts = {"it's ?", "\\"};
  const std::pair<const char*, const char*> statements[] = {
      {"SELECT ? , ?", "SELECT 'it\\'s ?' , '\\\\'"},
      {"SELECT '?', \"?\", `?`, ? -- ?\n, ?", "SELECT '?', \"?\", `?`, 'it\\'s ?' -- ?\n, '\\\\'"},
      {"SELECT /* ? */ '\\'?' = ?", "SELECT /* ? */ '\\'?' = 'it\\'s ?'"},
      {"SELECT ?, ?, ?", "SELECT 'it\\'s ?', '\\\\', ?"},
      {"SELECT '?", "SELECT '?"},
      {"SELECT /* ?", "SELECT /* ?"},
      {"SELECT '\\", "SELECT '\\"},
  };
  for (const auto& [sql, want] : statements) EXPECT_EQ(with_texts(sql, texts), want);
  EXPECT_EQ(with_texts("SELECT ?", {}), "SELECT ?");
}

TEST(Literals, OnlyWhatReadsIsASelect) {
  for (const char* sql : {"SELECT 1", " \n(select 1)", "-- x\nSELECT 1", "/* a */ /* b */with x"}) {
    EXPECT_TRUE(is_select(sql)) << sql;
  }
  for (const char* sql : {"", "INSERT", "SELECTED", "-- SELECT", "/* SELECT", "'SELECT'",
                          "drop SELECT", "SET x = 1"}) {
    EXPECT_FALSE(is_select(sql)) << sql;
  }
}

}  // namespace
}  // namespace kiv::clickhouse
