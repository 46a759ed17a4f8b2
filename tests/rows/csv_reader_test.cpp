#include "rows/csv_reader.h"

#include <sys/stat.h>

#include "rows_fixture.h"

namespace kiv::rows::test {
namespace {

using kiv::test::put_file;
using kiv::test::temp_dir;

// Every row with its line and what is wrong with it, as "1:text", "3?cut" or "5!too long".
std::string all_rows(const std::string& path, row_end end) {
  csv_reader reader(path, end);
  std::string all, row_text;
  std::string_view row;
  for (auto s = reader.next(row); s != row_status::end; s = reader.next(row)) {
    const char* kind = s == row_status::row ? ":" : s == row_status::cut ? "?" : "!";
    all += std::to_string(reader.line()) + kind + std::string(row.substr(0, 20)) + ' ';
  }
  return all;
}

TEST(CsvReader, Rows) {
  const std::string big(csv_reader::max_row + 10, 'x');
  const std::string whole(csv_reader::max_row / 2, 'y');
  const struct {
    row_end end;
    std::string bytes, expected;
  } cases[] = {
      {row_end::line, "", ""},
      {row_end::line, "a;b\nc\n", "1:a;b 2:c "},
      {row_end::line, "a\n\nb", "1:a 2: 3?b "},
      {row_end::line, "a<<>>\nb\n", "1:a<<>> 2:b "},
      {row_end::line, "a\n" + big + "\nb\n", "1:a 2!xxxxxxxxxxxxxxxxxxxx 3:b "},
      {row_end::line, whole + "\nb\n", "1:yyyyyyyyyyyyyyyyyyyy 2:b "},
      {row_end::marker, "a\nb<<>>\nc<<>>\n", "1:a\nb 3:c "},
      {row_end::marker, "<<>>\n<<>>\na<<>> b<<>>\n", "1: 2: 3:a<<>> b "},
      {row_end::marker, "a<<>>", "1?a<<>> "},
      {row_end::marker, "a<<>", "1?a<<> "},
      {row_end::marker, "a\n" + big + "<<>>\nb<<>>\n", "1!a\nxxxxxxxxxxxxxxxxxx 3:b "},
      {row_end::marker, big, "1!xxxxxxxxxxxxxxxxxxxx "},
  };
  const temp_dir dir;
  for (const auto& c : cases) {
    put_file(dir / "file", c.bytes);
    EXPECT_EQ(all_rows(dir / "file", c.end), c.expected) << c.bytes.substr(0, 40);
  }
}

// A row end that lies across the end of the buffer, wherever it falls.
TEST(CsvReader, RowEndAcrossTheBuffer) {
  const temp_dir dir;
  for (std::size_t length = (256 << 10) - 8; length < (256 << 10) + 2; ++length) {
    put_file(dir / "file", std::string(length, 'x') + "<<>>\nrest<<>>\n");
    EXPECT_EQ(all_rows(dir / "file", row_end::marker), "1:xxxxxxxxxxxxxxxxxxxx 2:rest ") << length;
  }
}

TEST(CsvReader, OpensRegularFilesOnly) {
  const temp_dir dir;
  ASSERT_EQ(mkfifo((dir / "fifo").c_str(), 0600), 0);
  EXPECT_FALSE(csv_reader(dir / "fifo", row_end::line).is_open());
  EXPECT_FALSE(csv_reader(dir.path(), row_end::line).is_open());
  EXPECT_FALSE(csv_reader(dir / "missing", row_end::line).is_open());
}

}  // namespace
}  // namespace kiv::rows::test
