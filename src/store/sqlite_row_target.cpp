#include "store/sqlite_row_target.h"

#include <utility>

namespace kiv::store {
namespace {

// Longer texts are bound where they stand instead of being copied for the next row.
constexpr std::size_t longest_kept = 256;

// The first parameter is the run.
std::string insert_into_columns(std::string_view table, std::span<const row_column> columns) {
  std::string names = "run_id", marks = "?";
  for (const auto& column : columns) {
    names += ", " + std::string(column.name);
    marks += ", ?";
  }
  return "INSERT INTO " + std::string(table) + " (" + names + ") VALUES (" + marks + ")";
}

}  // namespace

sqlite_row_target::sqlite_row_target(database& db, const std::string& schema, std::string run)
    : db_(db), schema_(schema), run_(std::move(run)) {}

bool sqlite_row_target::begin(std::string_view table, std::span<const row_column> columns) {
  has_tables_ = has_tables_ || db_.exec(schema_);
  if (!has_tables_) return false;
  insert_ = db_.prepare(insert_into_columns(table, columns));
  parameters_.clear();
  for (const auto& column : columns) parameters_.push_back({column.place, column.is_text});
  if (insert_) insert_.bind(1, std::string_view(run_));
  return static_cast<bool>(insert_);
}

bool sqlite_row_target::write(std::span<const row_value> row) {
  int index = 1;
  for (parameter& p : parameters_) {
    ++index;
    const row_value& value = row[p.place];
    if (!p.is_text) {
      if (p.bound && p.number == value.number) continue;
      insert_.bind(index, value.number);
      p.number = value.number;
      p.bound = true;
    } else if (value.text.size() > longest_kept) {
      insert_.bind(index, value.text);
      p.bound = false;
    } else if (!p.bound || p.text != value.text) {
      p.text = value.text;
      insert_.bind(index, p.text);
      p.bound = true;
    }
  }
  return insert_.run();
}

}  // namespace kiv::store
