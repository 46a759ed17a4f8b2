#pragma once

#include <ostream>
#include <string>

#include "output/csv_filebuf.h"

namespace kiv {

// The T-SQL script that imports a run's CSV files: one stored procedure call per created file.
// Writes nothing until the first trace has set it up; a script that cannot be created is silent.
class sql_script {
 public:
  explicit sql_script(const char* extension);

  // Called by every trace before it creates its files: later statements carry its run id and
  // version. The first trace also creates the script in `directory` and writes its opening lines.
  void set_path(const std::string& directory, const std::string& runid, int version, bool first);

  // Appends the statement that imports file `number` of the table `name`.
  void generate_import(const std::string& name, int number);

 private:
  std::string extension_;
  std::string runid_;  // safe for quoted text and file names
  int version_ = 1;
  csv_filebuf buffer_;
  std::ostream stream_;
};

}  // namespace kiv
