#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiv {

struct csv_table;

// How files of tables and the statements that import them are spelt; each is made and parsed here.

// The run id as it may stand in a file name and inside a quoted script text: '/', quotes and
// control bytes become '_', and at most 200 bytes are kept.
std::string safe_runid(std::string_view runid);

// "kiv." run id ".sql"
std::string make_script_name(std::string_view runid);
// The run id as the name of a script spells it; nothing for a name of another form.
std::optional<std::string> parse_script_name(std::string_view name);

// "kiv." run id "." table "." number ".csv"
std::string make_csv_name(std::string_view runid, std::string_view table, std::string_view number);

// A file of a table, as its name or an import statement tells it.
struct named_csv_file {
  std::string runid;  // as file names spell it
  const csv_table* table = nullptr;
  std::string number;  // in decimal
};
// Nothing for a name of another form. A run id may hold dots.
std::optional<named_csv_file> parse_csv_name(std::string_view name);

// The call of the server's import procedure for one file of a table, a line of the script.
// `version`: of the trace's header.
std::string make_import_statement(std::string_view runid, const csv_table& table, int version,
                                  int number);
// Whether a line of a script calls anything, and what; nothing for a call of another form.
bool is_import_statement(std::string_view line);
std::optional<named_csv_file> parse_import_statement(std::string_view line);

}  // namespace kiv
