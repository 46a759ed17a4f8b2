#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#include "support/run_trace.h"
#include "tables/csv_row.h"
#include "tables/run_output.h"
#include "trace/diagnostics.h"

namespace kiv {
namespace {

constexpr char separator = ';';  // of columns, and of the two numbers of a pair

template <class T>
T edge_or_any(std::minstd_rand& random) {
  constexpr T edges[] = {
      0, 1, 9, 10, 99, 100, std::numeric_limits<T>::max(), std::numeric_limits<T>::min()};
  if (random() % 2 == 0) return edges[random() % std::size(edges)];
  const std::uint64_t any = (static_cast<std::uint64_t>(random()) << 33) ^ random();
  return static_cast<T>(any >> random() % 60);
}

// A line of random columns, written into a row and returned as it should come out.
std::string write_line(csv_row& row, std::minstd_rand& random) {
  std::ostringstream plain;
  const auto number = [&](auto value) {
    row.col(value);
    plain << value << separator;
  };
  const auto text = [&] {
    const std::size_t longest = random() % 8 == 0 ? 3 * csv_row::capacity : 40;
    return std::string(random() % longest, static_cast<char>('a' + random() % 26));
  };
  const std::function<void()> columns[] = {
      [&] { number(edge_or_any<std::int16_t>(random)); },
      [&] { number(edge_or_any<std::uint16_t>(random)); },
      [&] { number(edge_or_any<std::int32_t>(random)); },
      [&] { number(edge_or_any<std::uint32_t>(random)); },
      [&] { number(edge_or_any<std::int64_t>(random)); },
      [&] { number(edge_or_any<std::uint64_t>(random)); },
      [&] { number('x'); },
      [&] { number(std::string_view(text())); },
      [&] { number(std::string_view(text())); },
      [&] {
        const auto object = edge_or_any<std::uint32_t>(random);
        const auto function = edge_or_any<std::int32_t>(random);
        row.col_pair(object, function);
        plain << object << separator << function << separator;
      },
      [&] {
        const std::string part = text();
        const auto count = edge_or_any<std::uint64_t>(random);
        row.raw(part).raw_number(count).raw('(').col(std::string_view(part));
        plain << part << count << '(' << part << separator;
      },
      [&] {
        const auto value = edge_or_any<std::int64_t>(random);
        row.cols(value, 7);
        plain << value << separator << 7 << separator;
      },
  };
  number(1);
  for (auto left = random() % 200; left > 0; --left) columns[random() % std::size(columns)]();

  const std::string line = plain.str(), unseparated = line.substr(0, line.size() - 1);
  switch (random() % 3) {
    case 0:
      return row.end_line(), unseparated + "\n";
    case 1:
      return row.end_line('>'), line + ">\n";
    default:
      return row.end_text(), line + "\n";
  }
}

// A table's file in a private directory.
class CsvRow : public testing::Test {
 protected:
  std::string content() { return test::read_file(dir / "kiv.R.memory.1.csv"); }

  const test::temp_dir dir;
  diagnostics silent;
  run_context context{silent};
  open_files files;
  run_output output{context, files};
};

TEST_F(CsvRow, WritesTheBytesOfAPlainStreamWhateverItsBuffersHold) {
  std::string expected;
  std::minstd_rand random(1);
  {
    csv_file file(output, table_id::memory, dir.path(), "R", true);
    for (int line = 0; line < 3'000; ++line) {
      csv_row row(file);
      expected += write_line(row, random);
    }
  }
  EXPECT_EQ(test::first_difference(expected, content()), "");
}

TEST_F(CsvRow, GivesItsTextWhileTheLineFitsTheBuffer) {
  {
    csv_file file(output, table_id::memory, dir.path(), "R", true);
    csv_row row(file);
    row.col("first");
    const std::size_t place = row.length();
    row.col(7).col("x");
    EXPECT_EQ(row.text_from(place), "7;x;");
    row.col(std::string_view(std::string(3'000, 'l')));
    EXPECT_EQ(row.text_from(0), "");
    row.end_line();
  }
  EXPECT_EQ(content(), "first;7;x;" + std::string(3'000, 'l') + "\n");
}

}  // namespace
}  // namespace kiv
