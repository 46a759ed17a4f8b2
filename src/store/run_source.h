#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "profile/run_profile.h"
#include "store/row_cursor.h"

namespace kiv::store {

// What a run was given at its import: key and value, of any bytes but for the '=' that no key has.
using run_labels = std::vector<std::pair<std::string, std::string>>;

// A run without its traces.
struct run_info {
  std::string name;
  std::string imported_at;  // local time, "2023-11-14 22:13:20"
  std::string source;
  std::uint64_t traces = 0;
  bool complete = false;
  bool from_rows = false;  // some trace is known from its CSV tables alone
  std::uint64_t records = 0;
  amount allocated, leaked, live;
  amount peak;                        // the sum of the traces' peaks
  std::optional<std::uint64_t> rows;  // of CSV tables, when they were loaded
  run_labels labels;                  // by key
};

// Where stored runs are read from. Names of runs hold any bytes. Errors are texts without the name
// of the source; names in them are quoted.
class run_source {
 public:
  run_source() = default;
  virtual ~run_source() = default;
  run_source(const run_source&) = delete;
  run_source& operator=(const run_source&) = delete;

  // The runs, in the order of their imports. Nothing, with `error` set, when they cannot be read.
  virtual std::optional<std::vector<run_info>> runs(std::string& error) = 0;

  // The name of the run imported last; nothing, with `error` set, when there is none.
  virtual std::optional<std::string> latest_run(std::string& error) = 0;

  // False, with `error` set, when there is no such run.
  virtual bool has_run(std::string_view name, std::string& error) = 0;

  // Nothing, with `error` set, when there is no such run or it cannot be read.
  virtual std::optional<run_profile> load(std::string_view name, std::string& error) = 0;

  // The rows of a view, of one run when a name is given. Null, with `error` set, when there is no
  // such view or run. Must not outlive the source.
  virtual std::unique_ptr<row_cursor> view(std::string_view view,
                                           const std::optional<std::string>& run,
                                           std::string& error) = 0;

  // The rows of one SELECT, in which the n-th '?' stands for the n-th of `texts`; nothing is
  // replaced when there are none. Null, with `error` set, when the statement is another or is not
  // understood; when the source fails, that is an error of the rows. Must not outlive the source.
  virtual std::unique_ptr<row_cursor> select(std::string_view sql,
                                             const std::vector<std::string>& texts,
                                             std::string& error) = 0;
};

}  // namespace kiv::store
