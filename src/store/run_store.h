#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "profile/run_profile.h"
#include "store/database_file.h"
#include "store/sqlite.h"

namespace kiv::store {

enum class open_mode {
  create,     // for imports; an import into a file that does not exist makes it
  read_only,  // beside imports, after one that was killed, and on a read-only medium
};

enum class save_result {
  saved,
  replaced,            // what was stored under the name is gone
  refused_incomplete,  // a complete run of that name is stored, and this one is not complete
  refused_duplicate,   // two traces of one run id and pid
  failed,
};

struct save_options {
  std::string source;  // where the run came from, for `runs`
  // Loads rows under the name of the run, within the transaction of the save. Gives their number;
  // nothing, with the error set, makes the whole save fail.
  std::function<std::optional<std::uint64_t>(database&, const run_profile&, std::string& error)>
      rows = {};
};

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
};

// The profiles of runs in one SQLite file. Names of runs hold any bytes. Errors are texts without
// the path of the file; names in them are quoted.
class run_store {
 public:
  run_store() = default;
  ~run_store() { close(); }
  run_store(const run_store&) = delete;
  run_store& operator=(const run_store&) = delete;

  // False, with `error` set, when the file is no database of this program and version, or cannot be
  // opened.
  bool open(const std::string& path, open_mode mode, std::string& error);

  // Stores a run in one transaction. A stored run of the same name gives way to a complete run, or
  // when it is itself not complete. For all but `saved` and `replaced`, `error` has the reason and
  // the database is as it was.
  save_result save(const run_profile& run, const save_options& options, std::string& error);

  // The runs, in the order of their imports. Nothing, with `error` set, when they cannot be read.
  std::optional<std::vector<run_info>> runs(std::string& error);

  // The name of the run imported last; nothing, with `error` set, when there is none.
  std::optional<std::string> latest_run(std::string& error);

  // False, with `error` set, when there is no such run.
  bool has_run(std::string_view name, std::string& error);

  // Nothing, with `error` set, when there is no such run or it cannot be read.
  std::optional<run_profile> load(std::string_view name, std::string& error);

  // Deletes runs with all that belongs to them: all of them, or none when one is not there.
  bool forget(std::span<const std::string> names, std::string& error);

  // For queries (query.h).
  database& connection() { return db_; }

  // Closes the file. When it was made by `open` and no run came into it, it is deleted.
  void close();

 private:
  save_result save_within(const run_profile& run, const save_options& options, std::string& error);
  bool forget_run(std::string_view name);

  database db_;
  std::string path_;
  creation_lock creation_;
};

}  // namespace kiv::store
