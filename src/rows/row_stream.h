#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "rows/csv_reader.h"
#include "rows/row_parser.h"

namespace kiv::rows {

struct parsed_row {
  std::uint64_t line;
  std::string_view text;           // the row, or its beginning when it was too long
  std::span<const field> columns;  // empty when the row was not understood
  std::string reason;              // why not; empty for a row without any text
  row_status status = row_status::row;
};

// Some rows of a file, with the bytes they point into.
struct row_batch {
  std::vector<char> bytes;
  std::vector<field> fields;
  std::vector<parsed_row> rows;
  std::uint64_t file_bytes = 0;  // of the file, that the batch stands for
};

// Reads and parses a CSV file on a thread of its own, a few batches ahead of its user. The order
// of the rows is that of the file.
class row_stream {
 public:
  row_stream(const std::string& path, const csv_table& table, separators seps);
  ~row_stream();
  row_stream(const row_stream&) = delete;
  row_stream& operator=(const row_stream&) = delete;

  bool is_open() const { return reader_.is_open(); }

  // Gives the next batch in exchange for a used one. False after the last.
  bool next(row_batch& batch);

  // After the last batch: whether a read error ended the file early.
  bool failed() const { return reader_.failed(); }

 private:
  void produce();
  bool fill(row_batch& batch);
  void add_row(row_batch& batch, row_status status, std::string_view row);

  const csv_table& table_;
  csv_reader reader_;
  row_parser parser_;
  row_status pending_status_ = row_status::end;  // of a row that did not fit into the last batch
  std::string_view pending_;
  bool has_pending_ = false;
  std::uint64_t bytes_reported_ = 0;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<row_batch> full_, empty_;
  bool finished_ = false, stopped_ = false;
  std::thread thread_;
};

}  // namespace kiv::rows
