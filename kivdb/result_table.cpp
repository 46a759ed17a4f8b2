#include "result_table.h"

namespace kiv::db {

std::vector<result_cell> current_row(const statement& query) {
  std::vector<result_cell> row;
  for (int i = 0; i < query.columns(); ++i) {
    if (query.is_null(i)) {
      row.emplace_back();
    } else if (query.is_number(i)) {
      row.emplace_back(query.number(i));
    } else {
      row.emplace_back(std::string(query.text(i)));
    }
  }
  return row;
}

bool fill(result_table& table, statement& query) {
  while (query.step()) table.rows.push_back(current_row(query));
  return !query.failed();
}

void name_columns(result_table& table, const statement& query) {
  constexpr std::string_view counts[] = {"allocs", "frees",       "blocks",  "resizes",
                                         "ended",  "short_lived", "records", "growths"};
  for (int i = 0; i < query.columns(); ++i) {
    const std::string name(query.name(i));
    auto kind = column_kind::plain;
    if (name.ends_with("bytes") || name.ends_with("_change") || name.ends_with("_total")) {
      kind = column_kind::bytes;
    } else if (name.ends_with("_blocks")) {
      kind = column_kind::count;
    } else {
      for (const auto& count : counts) {
        if (name == count) kind = column_kind::count;
      }
    }
    table.columns.push_back({name, name, kind});
  }
}

}  // namespace kiv::db
