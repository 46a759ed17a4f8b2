#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

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

TEST(Catalogue, DocumentIsWhatTheGeneratorPrints) {
  std::ifstream file(KIV_SOURCE_DIR "/docs/tables.md", std::ios::binary);
  const std::string written(std::istreambuf_iterator<char>(file), {});
  EXPECT_EQ(written, output_of(KIV_MAKE_TABLES_DOC))
      << "write it anew: make_tables_doc > docs/tables.md";
}

}  // namespace
}  // namespace kiv
