#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "rows/row_parser.h"
#include "store/sqlite.h"

namespace kiv::rows {

// Inserts parsed rows into one table. Most columns of a row repeat the row before; those keep the
// value that is bound already.
class table_writer {
 public:
  // Rows go in under `run`, whatever run id they have.
  table_writer(store::database& db, const csv_table& table, std::string run);

  bool is_ready() const { return static_cast<bool>(insert_); }
  bool write(std::span<const field> fields);

 private:
  struct target {
    std::size_t field;  // index among the columns of the row
    bool is_text;
    bool bound = false;
    std::int64_t number = 0;
    std::string text = {};
  };

  store::statement insert_;
  std::string run_;
  std::vector<target> targets_;
};

}  // namespace kiv::rows
