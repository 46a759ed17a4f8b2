#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rows/separators.h"
#include "store/row_target.h"
#include "tables/csv_tables.h"

namespace kiv::rows {

// One column of a row; its text points into the row. Numbers beyond 2^63 - 1 wrap, as they do in
// the analyser's own books.
using field = store::row_value;

// Cuts rows of one table into columns and checks every column against the catalogue. Nothing in a
// row is quoted, so a free text that holds a separator is found by what stands around it.
class row_parser {
 public:
  row_parser(const csv_table& table, separators seps);

  // True when the row was understood; `fields()` then has one entry per column. Otherwise
  // `reason()` says what is wrong.
  bool parse(std::string_view row);

  const std::vector<field>& fields() const { return fields_; }
  const std::string& reason() const { return reason_; }

  // Reads the columns before `wanted` and gives what begins there. Nothing when they do not read.
  std::optional<std::string_view> from_column(std::string_view row, std::size_t wanted);

 private:
  struct plan {
    const csv_column* column;
    char end;  // what follows the column; nothing follows the last one
  };

  const char* read(std::size_t column, const char* at, const char* end);
  bool fits_last(std::size_t column, const char* at, const char* end) const;
  bool fail(std::size_t column, std::string_view what, std::string_view value = {});
  int count_readings(std::size_t column, const char* at, const char* end);
  bool parse_with_separators_in_texts(std::string_view row);

  std::vector<plan> plan_;
  char data_separator_;
  bool has_inner_free_text_ = false;
  std::vector<field> fields_, trial_;
  std::string reason_;
};

}  // namespace kiv::rows
