#pragma once

#include <string>
#include <vector>

#include "clickhouse/insert_pool.h"
#include "clickhouse/literals.h"
#include "clickhouse/profile_rows.h"
#include "store/row_target.h"

namespace kiv::clickhouse {

// Sends rows of the CSV tables of a load, some megabytes at a time.
class row_inserter final : public store::row_target {
 public:
  row_inserter(insert_pool& pool, const server_url& url, const load_id& load);

  bool begin(std::string_view table, std::span<const store::row_column> columns) override;
  bool write(std::span<const store::row_value> row) override;
  bool finish() override;
  std::string error() const override;

 private:
  bool send();

  insert_pool& pool_;
  const server_url& url_;
  std::string first_columns_;  // of every row, as they are sent
  std::string table_;
  std::vector<store::row_column> columns_;
  tsv_writer rows_;
};

}  // namespace kiv::clickhouse
