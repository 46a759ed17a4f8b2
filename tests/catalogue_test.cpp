#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "output/csv_tables.h"

namespace kiv {
namespace {

std::string output_of(const std::string& command) {
  std::string all;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return all;
  char buffer[4096];
  for (std::size_t n = 0; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) all.append(buffer, n);
  pclose(pipe);
  return all;
}

// Counted on files that the analyser wrote with the default separators.
TEST(Catalogue, FieldsPerRow) {
  const std::map<std::string_view, std::size_t> fields = {
      {"memory", 94},  {"sbrk", 25},   {"queryevents", 23}, {"marker", 9},   {"freemem", 5},
      {"arena", 20},   {"arcs", 12},   {"symbols", 10},     {"flowdata", 8}, {"flow", 8},
      {"process", 11}, {"hashloc", 4}, {"malid", 13},       {"color", 5},    {"queries", 9},
      {"runs", 13},    {"objects", 4}, {"functions", 6},
  };
  for (const auto& table : csv_tables()) {
    ASSERT_TRUE(fields.contains(table.name)) << table.name;
    EXPECT_EQ(table.columns.size(), fields.at(table.name)) << table.name;
    EXPECT_EQ(table.columns[0].name, "run_id") << table.name;
    EXPECT_EQ(table.columns[1].name, "main_pid") << table.name;
    EXPECT_FALSE(table.columns.back().joined_to_next) << table.name;
  }
}

TEST(Catalogue, LooksUpByName) {
  const csv_table* freemem = find_csv_table("freemem");
  ASSERT_NE(freemem, nullptr);
  EXPECT_TRUE(freemem->split_by_size);
  const csv_column* type = find_csv_column(*freemem, "type");
  ASSERT_NE(type, nullptr);
  EXPECT_EQ(type->type, column_type::character);
  EXPECT_EQ(find_csv_table("freeme"), nullptr);
  EXPECT_EQ(find_csv_column(*freemem, "size"), nullptr);
}

TEST(Catalogue, DocumentIsWhatTheGeneratorPrints) {
  std::ifstream file(KIV_SOURCE_DIR "/docs/tables.md", std::ios::binary);
  const std::string written(std::istreambuf_iterator<char>(file), {});
  EXPECT_EQ(written, output_of(KIV_MAKE_TABLES_DOC))
      << "write it anew: make_tables_doc > docs/tables.md";
}

}  // namespace
}  // namespace kiv
