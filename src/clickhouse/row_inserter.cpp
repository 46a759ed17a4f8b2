#include "clickhouse/row_inserter.h"

#include "clickhouse/schema.h"

namespace kiv::clickhouse {

row_inserter::row_inserter(insert_pool& pool, const server_url& url, const load_id& load)
    : pool_(pool), url_(url) {
  tsv_writer first;
  first.add(load.run);
  first.add(load.import);
  first_columns_ = first.take();
}

bool row_inserter::begin(std::string_view table, std::span<const store::row_column> columns) {
  if (!send()) return false;
  columns_.assign(columns.begin(), columns.end());
  table_ = insert_table(std::string(table) + "_stored", url_.cluster) + " (run, import";
  for (const auto& column : columns_) table_ += ", " + std::string(column.name);
  table_ += ')';
  return true;
}

bool row_inserter::write(std::span<const store::row_value> row) {
  rows_.add_ready(first_columns_);
  for (const auto& column : columns_) {
    const store::row_value& value = row[column.place];
    column.is_text ? rows_.add(value.text) : rows_.add(value.number);
  }
  rows_.end_row();
  return !rows_.is_full() || send();
}

bool row_inserter::finish() { return send(); }

bool row_inserter::send() { return rows_.bytes().empty() || pool_.insert(table_, rows_.take()); }

std::string row_inserter::error() const { return in_words(pool_.failure(), url_); }

}  // namespace kiv::clickhouse
