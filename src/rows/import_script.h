#pragma once

#include <string>
#include <vector>

#include "tables/csv_names.h"

namespace kiv::rows {

// Reads the statements of a script that kiv wrote. False, with `error` set, when the file cannot
// be read or holds a statement of another form.
bool read_import_script(const std::string& path, std::vector<named_csv_file>& statements,
                        std::string& error);

}  // namespace kiv::rows
