#include "rows/table_writer.h"

#include <utility>

#include "rows/row_tables.h"

namespace kiv::rows {
namespace {

// Longer texts are bound where they stand instead of being copied for the next row.
constexpr std::size_t longest_kept = 256;

}  // namespace

table_writer::table_writer(store::database& db, const csv_table& table, std::string run)
    : insert_(db.prepare(insert_statement(table))), run_(std::move(run)) {
  if (insert_) insert_.bind(1, std::string_view(run_));
  for (std::size_t i = 1; i < table.columns.size(); ++i) {
    const csv_column& column = table.columns[i];
    if (!column.label.empty()) continue;
    const bool is_number = column.type == column_type::i64 || column.type == column_type::u64;
    targets_.push_back({i, !is_number});
  }
}

bool table_writer::write(std::span<const field> fields) {
  int parameter = 1;
  for (target& t : targets_) {
    ++parameter;
    const field& f = fields[t.field];
    if (!t.is_text) {
      if (t.bound && t.number == f.number) continue;
      insert_.bind(parameter, f.number);
      t.number = f.number;
      t.bound = true;
    } else if (f.text.size() > longest_kept) {
      insert_.bind(parameter, f.text);
      t.bound = false;
    } else if (!t.bound || t.text != f.text) {
      t.text = f.text;
      insert_.bind(parameter, t.text);
      t.bound = true;
    }
  }
  return insert_.run();
}

}  // namespace kiv::rows
