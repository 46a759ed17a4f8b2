#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "kivdb/load_source.h"
#include "rows/import_plan.h"
#include "rows/run_reading.h"
#include "store/run_target.h"

namespace kiv::db {

// The CSV tables that belong to runs, for --rows: those in the directories of their headers.
class run_tables {
 public:
  explicit run_tables(const rows::row_options& options) : options_(options) {}

  // False, with `error` set, when there are none, or their script cannot be read.
  bool find(const found_sources& found, std::string& error);

  // What loads the tables of a run within its save. Nothing, with `error` set, when the run has
  // none. Refers to this object.
  std::optional<decltype(store::save_options::rows)> loader(const run_profile& run,
                                                            std::string& error) const;

 private:
  rows::row_options options_;
  rows::import_plan plan_;
};

}  // namespace kiv::db
