#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tables/csv_tables.h"

namespace kiv::rows {

enum class row_status {
  row,       // a whole row
  cut,       // the file ends before the row does
  too_long,  // longer than max_row; only its beginning is handed out
  end,       // no further row
};

// Reads a CSV file row by row. Its memory is bounded by `max_row`, whatever the file holds.
class csv_reader {
 public:
  static constexpr std::size_t max_row = std::size_t{16} << 20;

  // Opens the file when it is a regular file.
  csv_reader(const std::string& path, row_end end);
  ~csv_reader();
  csv_reader(const csv_reader&) = delete;
  csv_reader& operator=(const csv_reader&) = delete;

  bool is_open() const { return fd_ >= 0; }
  // True after a read error; `next` then reports the end.
  bool failed() const { return failed_; }

  // The next row without its row end, valid until the next call.
  row_status next(std::string_view& row);

  std::uint64_t line() const { return row_line_; }     // at which the last row begins, from 1
  std::uint64_t bytes_read() const { return bytes_; }  // handed out so far, row ends included

 private:
  bool fill();
  std::size_t find_end(std::size_t from) const;
  row_status skip_long_row(std::string_view& row);
  void consume(std::size_t size);

  int fd_ = -1;
  std::string_view end_;  // the bytes that end a row
  std::vector<char> buffer_;
  std::vector<char> long_row_;  // beginning of the last row that was too long
  std::size_t begin_ = 0, filled_ = 0;
  bool at_eof_ = false, failed_ = false;
  std::uint64_t row_line_ = 0, next_line_ = 1, bytes_ = 0;
};

// Whether the last row of a file is whole. An empty file has none.
bool ends_with_row_end(const std::string& path, row_end end);

}  // namespace kiv::rows
