#pragma once

#include <memory>

#include "clickhouse/insert_pool.h"
#include "clickhouse/server.h"
#include "store/run_source.h"
#include "store/run_target.h"

namespace kiv::clickhouse {

// The profiles of runs on a ClickHouse server, or on all of a cluster, asked and loaded through one
// of its servers. A load counts from the moment its entry is there, which is written last.
class server_store final : public store::run_source, public store::run_target {
 public:
  explicit server_store(const server_url& url) : server_(url), pool_(url) {}

  std::optional<std::vector<store::run_info>> runs(std::string& error) override;
  std::optional<std::string> latest_run(std::string& error) override;
  bool has_run(std::string_view name, std::string& error) override;
  std::optional<run_profile> load(std::string_view name, std::string& error) override;
  std::unique_ptr<store::row_cursor> view(std::string_view view,
                                          const std::optional<std::string>& run,
                                          std::string& error) override;
  std::unique_ptr<store::row_cursor> select(std::string_view sql,
                                            const std::vector<std::string>& texts,
                                            std::string& error) override;

  store::save_result save(const run_profile& run, const store::save_options& options,
                          std::string& error) override;
  bool forget(std::span<const std::string> names, std::string& error) override;

 private:
  // What is known of a run before it is loaded.
  struct stored_run {
    std::int64_t newest = 0;  // import of any run
    std::int64_t import = 0;  // of this one; 0: it is not stored
    bool complete = false;
    std::size_t traces = 0;
  };
  // For a load it is asked patiently, and `newest` is of all runs; else it is of this one.
  std::optional<stored_run> find(std::string_view name, std::string& error, bool for_load = false);
  server_failure send(const run_profile& run, const store::save_options& options,
                      std::int64_t import, std::string& error);

  server server_;
  insert_pool pool_;
};

}  // namespace kiv::clickhouse
