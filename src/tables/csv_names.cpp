#include "tables/csv_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "tables/csv_tables.h"

namespace kiv {

namespace {

constexpr std::string_view file_start = "kiv.";
constexpr std::string_view csv_end = ".csv";
constexpr std::string_view script_end = ".sql";
constexpr std::string_view call_start = "execute ";
constexpr std::string_view procedure = "Do_Import_Kiv_Csv_File";
constexpr std::string_view procedure_of_memory = "Do_Import_Kiv_Csv_File_Memory";
constexpr std::string_view path_argument = " @Path,";

std::string_view procedure_for(const csv_table& table) {
  return table.id == table_id::memory ? procedure_of_memory : procedure;
}

bool is_number(std::string_view text) {
  return !text.empty() && text.size() <= 10 &&
         std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

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

}  // namespace

std::string safe_runid(std::string_view runid) {
  constexpr std::size_t max_length = 200;  // leaves room for the rest of a file name
  std::string safe(runid.substr(0, max_length));
  for (char& letter : safe) {
    const auto byte = static_cast<unsigned char>(letter);
    if (letter == '/' || letter == '\'' || byte < 0x20 || byte == 0x7f) letter = '_';
  }
  return safe;
}

std::string make_script_name(std::string_view runid) {
  return fmt::format("{}{}{}", file_start, safe_runid(runid), script_end);
}

std::optional<std::string> parse_script_name(std::string_view name) {
  const std::size_t around = file_start.size() + script_end.size();
  if (!name.starts_with(file_start) || !name.ends_with(script_end) || name.size() < around) {
    return std::nullopt;
  }
  return std::string(name.substr(file_start.size(), name.size() - around));
}

std::string make_csv_name(std::string_view runid, std::string_view table, std::string_view number) {
  return fmt::format("{}{}.{}.{}{}", file_start, safe_runid(runid), table, number, csv_end);
}

std::optional<named_csv_file> parse_csv_name(std::string_view name) {
  if (!name.starts_with(file_start) || !name.ends_with(csv_end)) return std::nullopt;
  name.remove_suffix(csv_end.size());
  const std::size_t number_at = name.rfind('.');
  const std::size_t table_at = number_at == 0 ? name.npos : name.rfind('.', number_at - 1);
  if (table_at == name.npos || table_at < file_start.size()) return std::nullopt;
  const csv_table* table = find_csv_table(name.substr(table_at + 1, number_at - table_at - 1));
  const std::string_view number = name.substr(number_at + 1);
  if (table == nullptr || !is_number(number)) return std::nullopt;
  const std::string_view runid = name.substr(file_start.size(), table_at - file_start.size());
  return named_csv_file{std::string(runid), table, std::string(number)};
}

std::string make_import_statement(std::string_view runid, const csv_table& table, int version,
                                  int number) {
  std::string line =
      fmt::format("{}{}{} '{}', '{}{}', '{}', '{}'", call_start, procedure_for(table),
                  path_argument, safe_runid(runid), table.name, version, table.name, number);
  if (table.end == row_end::marker) line += fmt::format(", '{}'", row_end_marker);
  return line + ";\n";
}

bool is_import_statement(std::string_view line) { return line.starts_with(call_start); }

// The arguments are run id, table and header version, table, number and, for tables with a row end
// of their own, that row end.
std::optional<named_csv_file> parse_import_statement(std::string_view line) {
  const std::size_t path_at = line.find(path_argument);
  if (!is_import_statement(line) || path_at == line.npos) return std::nullopt;
  const std::string_view called = line.substr(call_start.size(), path_at - call_start.size());
  const auto arguments = quoted_arguments(line.substr(path_at + path_argument.size()));
  if (!arguments || arguments->size() < 4) return std::nullopt;
  const auto& list = *arguments;
  const csv_table* table = find_csv_table(list[2]);
  if (table == nullptr || called != procedure_for(*table) || !is_number(list[3])) {
    return std::nullopt;
  }
  // 0 is what a trace gets whose header could not be read; its files are empty.
  if (list[1] != list[2] + "1" && list[1] != list[2] + "0") return std::nullopt;
  const bool has_marker = list.size() == 5 && list[4] == row_end_marker;
  if (table->end == row_end::marker ? !has_marker : list.size() != 4) return std::nullopt;
  return named_csv_file{list[0], table, list[3]};
}

}  // namespace kiv
