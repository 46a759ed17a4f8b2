#include "rows/row_parser.h"

#include <gtest/gtest.h>

namespace kiv::rows {
namespace {

// The columns of a row joined by '|', or what is wrong with it.
std::string read(std::string_view table, std::string_view row, separators seps = {}) {
  row_parser parser(*find_csv_table(table), seps);
  if (!parser.parse(row)) return parser.reason();
  std::string all;
  const auto& columns = find_csv_table(table)->columns;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const bool number = columns[i].type == column_type::i64 || columns[i].type == column_type::u64;
    const field& f = parser.fields()[i];
    all += (i ? "|" : "") + (number ? std::to_string(f.number) : std::string(f.text));
  }
  return all;
}

TEST(RowParser, Rows) {
  const struct {
    std::string_view table, row, expected;
    separators seps = {};
  } cases[] = {
      {"freemem", "R;-7;1;2;f", "R|-7|1|2|f"},
      {"freemem", "R,7,1,2,;", "R|7|1|2|;", {',', ','}},
      {"freemem", "R-7-1-2-f", "R|7|1|2|f", {'-', '-'}},
      {"freemem", "R--7-1-2-f", "R|-7|1|2|f", {'-', '-'}},
      {"freemem", "R;7;18446744073709551615;2;f", "R|7|-1|2|f"},
      {"freemem", "R;7;18446744073709551616;2;f",
       "column 3 (alloc_rec): not a number: '18446744073709551616'"},
      {"freemem", "R;-9223372036854775808;1;2;f", "R|-9223372036854775808|1|2|f"},
      {"freemem", "R;-9223372036854775809;1;2;f",
       "column 2 (main_pid): not a number: '-9223372036854775809'"},
      {"freemem", "R;7;-1;2;f", "column 3 (alloc_rec): not a number: '-1'"},
      {"freemem", "R;7;1;2", "column 5 (type): missing, the row ends before it"},
      {"freemem", "R;7;1;2;", "column 5 (type): no character"},
      {"freemem", "R;7;1;2;f;", "column 5 (type): more columns follow ';'"},
      {"freemem", "R;7;1x;2;f", "column 3 (alloc_rec): not its end: 'x;2;f'"},
      {"freemem", "", "column 2 (main_pid): missing, the row ends before it"},
      {"hashloc", "R;7;-5;a;b;c", "R|7|-5|a;b;c"},
      {"hashloc", std::string_view("R;7;-5;a\0b", 10),
       "column 4 (source_line): NUL byte in a text"},
      {"runs",
       "R 7 2023-11-14 22:13:20.005 2023-11-14 22:14:20.250 p e a h u what a day 16 32 64",
       "R|7|2023-11-14 22:13:20.005|2023-11-14 22:14:20.250|p|e|a|h|u|what a day|16|32|64",
       {' ', ' '}},
      {"runs", "R;7;2023-11-14 22:13:20;2023-11-14 22:14:20.250;p;e;a;h;u;d;16;32;64",
       "column 3 (start_time): not a time: '2023-11-14 22:13:20'"},
      // Function names with the separator in them, found by the numbers around them.
      {"arcs",
       "R,7,7,2,o,1,2,f(int, char),p,3,-4,g(a, b)",
       "R|7|7|2|o|1|2|f(int, char)|p|3|-4|g(a, b)",
       {',', ','}},
      {"arcs",
       "R,7,7,2,o,1,2,f(int, 5, 6, 7),p,3,-4,g",
       "R|7|7|2|o|1|2|f(int, 5, 6, 7)|p|3|-4|g",
       {',', ','}},
      {"arcs", "R,7,7,2,o,1,2,f,p,5,6,7,p,3,-4,g", "R|7|7|2|o|1|2|f|p|5|6|7,p,3,-4,g", {',', ','}},
      {"malid", "R;7;5;0;oic:a;b;oic;a;b;r;1;2023-11-14 22:13:20.005;2023-11-14 22:13:20.005;1;2",
       "a text holds the separator, and the row can be read in several ways"},
  };
  for (const auto& c : cases) EXPECT_EQ(read(c.table, c.row, c.seps), c.expected) << c.row;
}

// Labels and times that hold the separator.
TEST(RowParser, BlanksAsSeparators) {
  std::string row = "R 7 2023-11-14 22:13:20.005 a", expected = "R|7|2023-11-14 22:13:20.005|a";
  for (const auto& c : find_csv_table("memory")->columns.subspan(4)) {
    const bool number = c.type == column_type::i64 || c.type == column_type::u64;
    const std::string cell = number ? "5" : std::string(c.label);
    row += ' ' + cell;
    expected += '|' + cell;
  }
  EXPECT_EQ(read("memory", row, {' ', ' '}), expected);
  row.replace(row.find("process m"), 9, "process x");
  EXPECT_TRUE(read("memory", row, {' ', ' '}).ends_with("not the label 'process m': 'process'"));
}

TEST(RowParser, HostileRowsAreRefusedAtOnce) {
  const std::string separators(1'000'000, ';');
  const std::string zeros = [] {
    std::string row = "R;7;2023-11-14 22:13:20.005;a";
    for (int i = 0; i < 1'000'000; ++i) row += ";0";
    return row;
  }();
  for (const auto& table : csv_tables()) {
    EXPECT_NE(read(table.name, separators), "") << table.name;
    EXPECT_TRUE(read(table.name, separators).starts_with("column ")) << table.name;
    EXPECT_TRUE(read(table.name, zeros).starts_with("column ") || table.columns.size() < 12)
        << table.name;
  }
}

TEST(Separators, AreReadOffTheRows) {
  const struct {
    std::string_view row;
    char expected;
  } cases[] = {
      {"R;7;2023-11-14 22:13:20.005;x", ';'},
      {"R\t-7\t2023-11-14 22:13:20.005\tx", '\t'},
      {"R 7 2023-11-14 22:13:20.005 x", ' '},
      {"R-7-2023-11-14 22:13:20.005-x", '-'},
      {"R;7;0;0;1,2023-11-14 22:13:20.005", 0},
      {"R172023-11-14 22:13:20.005", 0},
      {"", 0},
  };
  for (const auto& c : cases)
    EXPECT_EQ(detect_data_separator(c.row).value_or(0), c.expected) << c.row;

  const csv_table& arena = *find_csv_table("arena");
  const std::string before = "R,7,2023-11-14 22:13:20.005,9,0,7,1,2,3,";
  EXPECT_EQ(detect_fun_separator(before + "11@-4,12@5,,0,,0,1,2,3", arena, ','), '@');
  EXPECT_EQ(detect_fun_separator(before + "11,-4,12,5,,0,,0,1,2,3", arena, ','), ',');
  EXPECT_EQ(detect_fun_separator("R,7", arena, ','), std::nullopt);
}

}  // namespace
}  // namespace kiv::rows
