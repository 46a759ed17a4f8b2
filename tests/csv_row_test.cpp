#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#include "captured.h"
#include "output/csv_file.h"
#include "output/csv_file_sequence.h"
#include "output/csv_row.h"
#include "output/sql_script.h"
#include "support/run_trace.h"

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
template <std::size_t capacity>
std::string write_line(basic_csv_row<capacity>& row, std::minstd_rand& random, unsigned ending) {
  std::ostringstream plain;
  const auto number = [&](auto value) {
    row.col(value);
    plain << value << separator;
  };
  const auto text = [&] {
    const std::size_t longest = random() % 4 == 0 ? 3 * capacity : 40;
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
        if constexpr (capacity >= 2 * number_room + 3) {
          const auto value = edge_or_any<std::int64_t>(random);
          row.cols(value, 7);
          plain << value << separator << 7 << separator;
        }
      },
  };
  number(1);
  for (auto left = random() % 12; left > 0; --left) columns[random() % std::size(columns)]();

  const std::string line = plain.str(), unseparated = line.substr(0, line.size() - 1);
  switch (ending % 5) {
    case 0:
      return row.end_line(), unseparated + "\n";
    case 1:
      return row.end_line('>'), line + ">\n";
    case 2:
      return row.end_text(), line + "\n";
    case 3:
      return row.end_part(), unseparated;
    default:
      return row.end_part_as_is(), line;
  }
}

template <class Capacity>
class CsvRow : public testing::Test {};
template <std::size_t bytes>
using room = std::integral_constant<std::size_t, bytes>;
using capacities =
    testing::Types<room<number_room + 3>, room<number_room + 4>, room<40>, room<100>, room<2048>>;
TYPED_TEST_SUITE(CsvRow, capacities);

TYPED_TEST(CsvRow, WritesTheBytesOfAPlainStreamWhateverItsBufferHolds) {
  const test::temp_dir dir;
  const test::captured announcements(std::cout);
  csv_file_sequence sequence("csv");
  sql_script script("sql");
  std::string expected;
  {
    csv_file file(&sequence, &script, "table", dir.path(), "R", true);
    for (unsigned seed = 1; seed <= 1'000; ++seed) {
      std::minstd_rand random(seed), same(seed);
      std::ostringstream stream;
      basic_csv_row<TypeParam::value> row(stream), row_of_file(file);
      const std::string line = write_line(row, random, seed);
      ASSERT_EQ(stream.str(), line) << seed;
      expected += write_line(row_of_file, same, seed);
    }
  }
  EXPECT_EQ(test::first_difference(expected, test::read_file(dir / "kiv.R.table.1.csv")), "");
}

TEST(CsvRowText, IsWholeWhileTheLineFitsTheBuffer) {
  std::ostringstream stream;
  csv_row row(stream);
  row.col("first");
  const std::size_t place = row.length();
  row.col(7).col("x");
  EXPECT_EQ(row.text_from(place), "7;x;");
  row.col(std::string_view(std::string(3'000, 'l')));
  EXPECT_EQ(row.text_from(0), "");
  row.end_line();
  EXPECT_EQ(stream.str(), "first;7;x;" + std::string(3'000, 'l') + "\n");
}

}  // namespace
}  // namespace kiv
