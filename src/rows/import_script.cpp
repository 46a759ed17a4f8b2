#include "rows/import_script.h"

#include <algorithm>
#include <optional>

#include "rows/csv_reader.h"
#include "util/printable.h"

namespace kiv::rows {
namespace {

constexpr std::string_view general_call = "execute Do_Import_Kiv_Csv_File @Path,";
constexpr std::string_view memory_call = "execute Do_Import_Kiv_Csv_File_Memory @Path,";

// Texts in single quotes, separated by commas and blanks and ended by ';'. Nothing when the
// arguments have another form.
std::optional<std::vector<std::string>> quoted_arguments(std::string_view text) {
  std::vector<std::string> arguments;
  for (;;) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (!text.starts_with('\'')) return std::nullopt;
    const auto close = text.find('\'', 1);
    if (close == std::string_view::npos) return std::nullopt;
    arguments.emplace_back(text.substr(1, close - 1));
    text.remove_prefix(close + 1);
    if (text == ";") return arguments;
    if (!text.starts_with(',')) return std::nullopt;
    text.remove_prefix(1);
  }
}

bool is_number(std::string_view text) {
  return !text.empty() && text.size() <= 10 &&
         std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

// The statement that calls a procedure with the arguments run id, table and format version, table,
// number and, for tables with a row end of their own, that row end.
std::optional<import_statement> parse_call(std::string_view arguments_text, bool memory) {
  const auto arguments = quoted_arguments(arguments_text);
  if (!arguments || arguments->size() < 4) return std::nullopt;
  const auto& list = *arguments;
  const csv_table* table = find_csv_table(list[2]);
  if (!table || (table->name == "memory") != memory || !is_number(list[3])) return std::nullopt;
  // 0 is what a trace gets whose header could not be read; its files are empty.
  if (list[1] != list[2] + "1" && list[1] != list[2] + "0") return std::nullopt;
  const bool has_marker = list.size() == 5 && list[4] == row_end_marker;
  if (table->end == row_end::marker ? !has_marker : list.size() != 4) return std::nullopt;
  return import_statement{list[0], table, list[3]};
}

}  // namespace

bool read_import_script(const std::string& path, std::vector<import_statement>& statements,
                        std::string& error) {
  csv_reader reader(path, row_end::line);
  if (!reader.is_open()) {
    error = path + ": cannot be opened";
    return false;
  }
  std::string_view line;
  for (auto status = reader.next(line); status != row_status::end; status = reader.next(line)) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!line.starts_with("execute")) continue;
    const bool memory = line.starts_with(memory_call);
    std::optional<import_statement> statement;
    if (memory || line.starts_with(general_call)) {
      statement =
          parse_call(line.substr(memory ? memory_call.size() : general_call.size()), memory);
    }
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
