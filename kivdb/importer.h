#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database.h"
#include "import_plan.h"
#include "import_progress.h"
#include "separators.h"

namespace kiv::db {

// Separators that the user named; the others are read off the files.
struct import_options {
  std::optional<char> data_separator;
  std::optional<char> fun_separator;
};

struct import_result {
  std::uint64_t rows = 0;
  std::uint64_t rejected = 0;
  std::vector<std::string> rejected_files;  // one line per file: how many, and the first reason
  separators seps;
};

// Imports runs into a database, each in a transaction of its own that replaces what the database
// held of the run.
class importer {
 public:
  importer(database& db, const import_options& options, import_progress& progress)
      : db_(db), options_(options), progress_(progress) {}

  // False, with `error()` set and the database as it was, when the run could not be imported.
  // Rows that cannot be read do not make it fail; they go into rejected_rows.
  bool import_run(const run_plan& run, import_result& result);

  const std::string& error() const { return error_; }

 private:
  class run_import;

  database& db_;
  const import_options& options_;
  import_progress& progress_;
  std::string error_;
};

}  // namespace kiv::db
