#include "store/view_catalogue.h"

#include <algorithm>

#include "store/schema.h"

namespace kiv {
std::span<const embedded_text> store_schema();
std::span<const embedded_text> store_views();
}  // namespace kiv

namespace kiv::store {

std::span<const sql_view> views() {
  static const auto all = read_sql_views(store_views(), find_text(store_schema(), "macros"));
  return all;
}

const sql_view* find_view(std::string_view name) {
  const auto found = std::ranges::find(views(), name, &sql_view::name);
  return found == views().end() ? nullptr : &*found;
}

std::string schema_sql() {
  std::string sql(find_text(store_schema(), "schema"));
  for (const auto& v : views()) {
    sql += "\n-- " + std::string(v.description) + "\nCREATE VIEW " + std::string(v.name) + " AS\n" +
           v.select + ";\n";
  }
  return sql;
}

}  // namespace kiv::store
