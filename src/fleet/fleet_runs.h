#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "store/run_source.h"

namespace kiv::fleet {

// Where a run stands among all: `order` ascends as they were imported.
struct fleet_run {
  std::string name;
  std::string release;  // empty: none
};

// What the traces of one program on one host held in a run, added up.
struct fleet_part {
  std::int64_t order = 0;  // of the run
  std::string program, host;
  bool complete = false;
  std::uint64_t peak = 0, leaked = 0;
};

// All runs of a source without what made up their figures.
class fleet_runs {
 public:
  // `label` is the one whose values are the releases. False, with `error` set, when the source
  // cannot be read.
  bool read(store::run_source& source, const std::string& label, std::string& error);

  const std::map<std::int64_t, fleet_run>& runs() const { return runs_; }
  // By order, program and host.
  const std::vector<fleet_part>& parts() const { return parts_; }
  // The same with the hosts of a run put together; their names are empty.
  std::vector<fleet_part> of_all_hosts() const;

 private:
  std::map<std::int64_t, fleet_run> runs_;
  std::vector<fleet_part> parts_;
};

// Hands the rows of a SELECT to `visit`. False, with `error` set, when they cannot be read.
bool each_row(store::run_source& source, const std::string& sql,
              const std::vector<std::string>& texts, std::string& error,
              const std::function<void(const store::row_cursor&)>& visit);

}  // namespace kiv::fleet
