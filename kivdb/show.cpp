#include "show.h"

#include <ostream>

#include "printable.h"
#include "views.h"

namespace kiv::db {
namespace {

constexpr std::int64_t rows_for_people = 100;

void print_for_people(std::ostream& out, statement& query, result_table& table,
                      const show_options& options) {
  const auto limit = static_cast<std::size_t>(options.top > 0 ? options.top : rows_for_people);
  bool more = query.step();
  for (; more && table.rows.size() < limit; more = query.step()) {
    table.rows.push_back(current_row(query));
  }
  print_aligned(out, table, options.style);
  if (more) out << "... and more (--top, --csv)\n";
}

void print_csv_rows(std::ostream& out, statement& query, const result_table& table) {
  print_csv_names(out, table.columns);
  while (query.step()) print_csv_row(out, current_row(query));
}

void print_json_rows(std::ostream& out, statement& query, const result_table& table) {
  std::string_view between = "[\n  ";
  while (query.step()) {
    out << between;
    print_json_row(out, table.columns, current_row(query));
    between = ",\n  ";
  }
  out << (between[0] == '[' ? "[]\n" : "\n]\n");
}

}  // namespace

bool print_view(std::ostream& out, database& db, const show_options& options, std::string& error) {
  if (!find_view(options.view)) {
    error = "no view " + printable(options.view) + "; `kivdb views` lists them";
    return false;
  }
  std::string sql = "SELECT * FROM " + options.view;
  if (!options.run.empty()) sql += " WHERE run_id = ?1";
  if (options.top > 0 && options.format != output_format::terminal) {
    sql += " LIMIT " + std::to_string(options.top);
  }
  statement query = db.prepare(sql);
  if (!query) {
    error = db.last_error();
    return false;
  }
  if (!options.run.empty()) query.bind(1, std::string_view(options.run));
  result_table table;
  name_columns(table, query);
  switch (options.format) {
    case output_format::terminal:
      print_for_people(out, query, table, options);
      break;
    case output_format::csv:
      print_csv_rows(out, query, table);
      break;
    case output_format::json:
      print_json_rows(out, query, table);
      break;
  }
  if (query.failed()) error = db.last_error();
  return !query.failed();
}

}  // namespace kiv::db
