#pragma once

#include <string>
#include <vector>

#include "store/row_target.h"
#include "store/sqlite.h"

namespace kiv::store {

// Inserts rows into the tables of a database, within the transaction of a save. Most columns of a
// row repeat the row before; those keep the value that is bound already.
class sqlite_row_target final : public row_target {
 public:
  // Rows go in under `run`. `schema` makes the tables where they are not there yet.
  sqlite_row_target(database& db, const std::string& schema, std::string run);

  bool begin(std::string_view table, std::span<const row_column> columns) override;
  bool write(std::span<const row_value> row) override;
  bool finish() override { return true; }
  std::string error() const override { return db_.error(); }

 private:
  struct parameter {
    std::size_t place;  // in the row
    bool is_text;
    bool bound = false;
    std::int64_t number = 0;
    std::string text = {};
  };

  database& db_;
  const std::string& schema_;
  bool has_tables_ = false;
  std::string run_;
  std::vector<parameter> parameters_;
  statement insert_;
};

}  // namespace kiv::store
