#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "report/json_writer.h"

namespace kiv::report {

enum class output_format : std::uint8_t { terminal, csv, json };

struct print_style {
  output_format format = output_format::terminal;
  bool color = false;
  std::optional<std::size_t> width = {};  // columns of the terminal; none: not one, nothing is cut
};

// How the cells of a column read for people; a share is a text that stands to the right.
enum class column_kind : std::uint8_t { text, plain, count, bytes, change, share };

struct column {
  std::string name;   // for scripts
  std::string title;  // for people
  column_kind kind = column_kind::text;
};

// Nothing, a number or a text. A number that is none (infinite, say) is shown as nothing.
using cell = std::variant<std::monostate, std::int64_t, std::uint64_t, double, std::string>;
using table_row = std::vector<cell>;

// Rows in aligned columns, texts to the left and numbers to the right. On a terminal long texts are
// shortened to fit. Widths are those of the first rows, so memory is bounded however many follow.
class aligned_table {
 public:
  aligned_table(std::ostream& out, std::vector<column> columns, const print_style& style,
                std::string_view indent = "");
  void add(const table_row& cells);
  // A line under the last row, where its last column begins.
  void add_below(std::string_view text);
  void finish();  // prints what is still held back

 private:
  struct line {
    std::vector<std::string> cells;  // one alone stands in the last column
  };
  bool is_text(std::size_t column) const { return columns_[column].kind == column_kind::text; }
  void add_line(line next);
  void set_widths();
  void narrow(std::size_t limit);
  void print_titles();
  void print_line(const line& cells);
  void print_cell(const std::string& text, std::size_t column);

  std::ostream& out_;
  std::vector<column> columns_;
  print_style style_;
  std::string indent_;
  std::vector<line> first_lines_;
  std::vector<std::size_t> widths_;  // empty while lines are held back
};

// Comma-separated values; texts are quoted where they need it.
class csv_table {
 public:
  csv_table(std::ostream& out, const std::vector<column>& columns);
  void add(const table_row& cells);

 private:
  std::ostream& out_;
};

void write_json_row(json_writer& json, const std::vector<column>& columns, const table_row& cells);

// One table as a whole answer in the format of the style; in JSON an array of objects.
class table_printer {
 public:
  table_printer(std::ostream& out, std::vector<column> columns, const print_style& style);
  void add(const table_row& cells);
  void finish();

 private:
  print_style style_;
  std::vector<column> columns_;
  json_writer json_;
  std::optional<aligned_table> aligned_;
  std::optional<csv_table> csv_;
};

// "\x1b[1m" and so on around a text when the style has colours.
std::string bold(std::string_view text, const print_style& style);
std::string dim(std::string_view text, const print_style& style);
std::string alarming(std::string_view text, const print_style& style);

}  // namespace kiv::report
