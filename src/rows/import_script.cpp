#include "rows/import_script.h"

#include "rows/csv_reader.h"
#include "util/printable.h"

namespace kiv::rows {

bool read_import_script(const std::string& path, std::vector<named_csv_file>& statements,
                        std::string& error) {
  csv_reader reader(path, row_end::line);
  if (!reader.is_open()) {
    error = path + ": cannot be opened";
    return false;
  }
  std::string_view line;
  for (auto status = reader.next(line); status != row_status::end; status = reader.next(line)) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!is_import_statement(line)) continue;
    auto statement = parse_import_statement(line);
    if (status != row_status::row || !statement) {
      error = path + ", line " + std::to_string(reader.line()) +
              ": not an import statement of kiv: " + printable(line.substr(0, 120));
      return false;
    }
    statements.push_back(std::move(*statement));
  }
  if (reader.failed()) error = path + ": cannot be read";
  return !reader.failed();
}

}  // namespace kiv::rows
