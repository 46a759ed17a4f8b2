#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kiv::store {

// One column of a row of a CSV table.
struct row_value {
  std::string_view text;    // as the file has it
  std::int64_t number = 0;  // of a column of numbers; beyond 2^63 - 1 modulo 2^64
};

// A column that is stored.
struct row_column {
  std::string_view name;
  std::size_t place = 0;  // in the rows that are written
  bool is_text = false;
};

// Takes the rows of the CSV tables of one run, under the name of the run: table by table, row by
// row. A false answer comes with the reason in `error()`; nothing is to be written after it.
class row_target {
 public:
  row_target() = default;
  virtual ~row_target() = default;
  row_target(const row_target&) = delete;
  row_target& operator=(const row_target&) = delete;

  // What is written from here on are rows of this table. The run's id is not among the columns.
  virtual bool begin(std::string_view table, std::span<const row_column> columns) = 0;
  // `row` has more than the columns that are stored: `place` leads to them.
  virtual bool write(std::span<const row_value> row) = 0;
  // After the last row of the last table.
  virtual bool finish() = 0;
  virtual std::string error() const = 0;
};

}  // namespace kiv::store
