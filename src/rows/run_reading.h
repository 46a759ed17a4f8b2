#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rows/import_plan.h"
#include "rows/row_stream.h"
#include "rows/separators.h"

namespace kiv::rows {

struct row_options {
  // Separators that the user named; the others are read off the files.
  std::optional<char> data_separator;
  std::optional<char> fun_separator;
  // Called now and then with the bytes and rows read since the last call.
  std::function<void(std::uint64_t bytes, std::uint64_t rows)> progress = {};
};

// What is common to all that reads the files of one run.
class run_reading {
 public:
  run_reading(const run_plan& run, const row_options& options) : run_(run), options_(options) {}

  // Finds out the separators. False, with the error set, when they cannot be told apart.
  bool begin();

  const run_plan& run() const { return run_; }
  separators seps() const { return seps_; }

  // The run id that the rows have; as the file names spell it until a row was read.
  const std::string& run_id() const { return run_id_.empty() ? run_.run_id : run_id_; }

  // One line per file with rows that could not be read: how many, and the first of them.
  const std::vector<std::string>& rejected() const { return rejected_; }

  // The first fault; empty while there is none.
  const std::string& error() const { return error_; }
  bool fail(std::string what);

 private:
  friend class table_rows;
  bool accepts(std::string_view run_id, std::string& reason);

  const run_plan& run_;
  const row_options& options_;
  separators seps_;
  std::string run_id_, error_;
  std::vector<std::string> rejected_;
};

// The rows of one table of a run, from all of its files.
class table_rows {
 public:
  enum class rejects { named, fatal };  // rows that cannot be read

  table_rows(run_reading& reading, std::string_view table, rejects how = rejects::named);

  // The next row; null at the end and after a fault, which is then the reading's error. A row that
  // is not whole and a file that is missing are faults.
  const parsed_row* next();

  // For the row given last: "kiv.R.memory.1.csv, line 7".
  std::string place() const;

  std::int64_t number(std::size_t column) const { return row_->columns[column].number; }
  std::string_view text(std::size_t column) const { return row_->columns[column].text; }
  // By the name of the column, which the table must have.
  std::size_t column(std::string_view name) const;

  std::uint64_t rows() const { return count_; }

 private:
  bool open_next_file();
  bool next_batch();
  bool take(const parsed_row& row);
  void reject(const parsed_row& row, const std::string& reason);
  void end_file();

  run_reading& reading_;
  const csv_table& table_;
  rejects how_;
  std::size_t next_file_ = 0;
  const import_file* file_ = nullptr;
  std::unique_ptr<row_stream> stream_;
  row_batch batch_;
  std::size_t at_ = 0;  // in the batch
  const parsed_row* row_ = nullptr;
  std::uint64_t count_ = 0;
  std::uint64_t rejected_ = 0;  // of the file
  std::string rejected_lines_;
};

}  // namespace kiv::rows
