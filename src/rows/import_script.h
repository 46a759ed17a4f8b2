#pragma once

#include <string>
#include <vector>

#include "tables/csv_tables.h"

namespace kiv::rows {

// One call of an import procedure.
struct import_statement {
  std::string run_id;
  const csv_table* table;
  std::string number;  // of the CSV file, in decimal
};

// Reads the statements of a script that kiv wrote. False, with `error` set, when the file cannot
// be read or holds a statement of another form.
bool read_import_script(const std::string& path, std::vector<import_statement>& statements,
                        std::string& error);

}  // namespace kiv::rows
