#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "store/database_file.h"
#include "store/run_source.h"
#include "store/run_target.h"
#include "store/sqlite.h"

namespace kiv::store {

enum class open_mode {
  create,     // for imports; an import into a file that does not exist makes it
  read_only,  // beside imports, after one that was killed, and on a read-only medium
};

// The profiles of runs in one SQLite file.
class run_store final : public run_source, public run_target {
 public:
  // `row_schema`: the statements that make the tables of rows where they are not there yet; needed
  // where rows are saved.
  explicit run_store(std::string row_schema = {}) : row_schema_(std::move(row_schema)) {}
  ~run_store() override { close(); }

  // False, with `error` set, when the file is no database of this program and version, or cannot be
  // opened.
  bool open(const std::string& path, open_mode mode, std::string& error);

  save_result save(const run_profile& run, const save_options& options,
                   std::string& error) override;
  bool forget(std::span<const std::string> names, std::string& error) override;

  std::optional<std::vector<run_info>> runs(std::string& error) override;
  std::optional<std::string> latest_run(std::string& error) override;
  bool has_run(std::string_view name, std::string& error) override;
  std::optional<run_profile> load(std::string_view name, std::string& error) override;
  std::unique_ptr<row_cursor> view(std::string_view view, const std::optional<std::string>& run,
                                   std::string& error) override;
  std::unique_ptr<row_cursor> select(std::string_view sql, const std::vector<std::string>& texts,
                                     std::string& error) override;

  database& connection() { return db_; }

  // Closes the file. When it was made by `open` and no run came into it, it is deleted.
  void close();

 private:
  save_result save_within(const run_profile& run, const save_options& options, std::string& error);
  bool forget_run(std::string_view name);

  std::string row_schema_;
  database db_;
  std::string path_;
  creation_lock creation_;
};

}  // namespace kiv::store
