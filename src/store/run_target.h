#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "profile/run_profile.h"
#include "store/row_target.h"
#include "store/run_source.h"

namespace kiv::store {

enum class save_result {
  saved,
  replaced,            // what was stored under the name is gone
  refused_incomplete,  // a complete run of that name is stored, and this one is not complete
  refused_duplicate,   // two traces of one run id and pid
  failed,
};

struct save_options {
  std::string source;      // where the run came from, for `runs`
  run_labels labels = {};  // each key once
  // Writes the rows of the run's CSV tables. Gives their number; nothing, with the error set, makes
  // the whole save fail.
  std::function<std::optional<std::uint64_t>(row_target&, const run_profile&, std::string& error)>
      rows = {};
};

// Where runs are stored. Errors are as those of run_source.
class run_target {
 public:
  run_target() = default;
  virtual ~run_target() = default;
  run_target(const run_target&) = delete;
  run_target& operator=(const run_target&) = delete;

  // Stores a run whole or not at all. A stored run of the same name gives way to a complete run, or
  // when it is itself not complete. For all but `saved` and `replaced`, `error` has the reason and
  // what is stored is as it was.
  virtual save_result save(const run_profile& run, const save_options& options,
                           std::string& error) = 0;

  // Deletes runs with all that belongs to them: all of them, or none when one is not there.
  virtual bool forget(std::span<const std::string> names, std::string& error) = 0;
};

// Says why two traces of a run cannot be told apart; empty when all can.
std::string duplicate_of(const run_profile& run);

// Why a stored complete run does not give way to this one; empty when this one is complete.
std::string why_incomplete(const run_profile& run);

}  // namespace kiv::store
