#pragma once

#include <string>

#include "tables/csv_filebuf.h"
#include "tables/csv_tables.h"

namespace kiv {

// The T-SQL script that imports a run's CSV files: one stored procedure call per created file.
// Writes nothing until the first trace has set it up; a script that cannot be created is silent.
class sql_script {
 public:
  sql_script(open_files& files, diagnostics& faults) : file_(files, faults) {}

  // Called by every trace before it creates its files: later statements carry its run id and
  // version. The first trace also creates the script in `directory` and writes its opening lines.
  void set_path(const std::string& directory, const std::string& runid, int version, bool first);

  // Appends the statement that imports file `number` of a table.
  void generate_import(const csv_table& table, int number);

 private:
  std::string runid_;
  int version_ = 1;
  csv_filebuf file_;
};

}  // namespace kiv
