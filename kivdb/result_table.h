#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "database.h"

namespace kiv::db {

// How the numbers of a column read on a terminal.
enum class column_kind { text, count, bytes, plain };

struct result_column {
  std::string name;   // for scripts
  std::string title;  // for people
  column_kind kind = column_kind::text;
};

// Nothing, a number or a text.
using result_cell = std::variant<std::monostate, std::int64_t, std::string>;

// A small table to be shown.
struct result_table {
  std::string name;   // for scripts
  std::string title;  // for people
  std::vector<result_column> columns;
  std::vector<std::vector<result_cell>> rows;
};

// The cells of the statement's current row.
std::vector<result_cell> current_row(const statement& query);

// Runs a statement and takes over its rows, whose columns are those of `table`. False when it
// failed.
bool fill(result_table& table, statement& query);

// Takes the columns from the statement itself and guesses how they read from their names.
void name_columns(result_table& table, const statement& query);

enum class output_format { terminal, csv, json };

struct print_style {
  bool color = false;
  std::size_t width = 100;  // of the terminal
};

// Aligned columns, as wide as the terminal at most: long texts are cut.
void print_aligned(std::ostream& out, const result_table& table, const print_style& style);

// A line of names, then the rows; texts quoted where they need it.
void print_csv(std::ostream& out, const result_table& table);
void print_csv_names(std::ostream& out, const std::vector<result_column>& columns);
void print_csv_row(std::ostream& out, const std::vector<result_cell>& row);

// An array of objects.
void print_json(std::ostream& out, const result_table& table);
void print_json_row(std::ostream& out, const std::vector<result_column>& columns,
                    const std::vector<result_cell>& row);

std::string json_text(std::string_view text);

}  // namespace kiv::db
