#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <memory>

#include "replay/kiv_query.h"
#include "util/ascending.h"

namespace kiv {

class diagnostics;

// The book of SQL statements: qid -> statement.
class KivQuery_db {
 public:
  // A qid that is known already keeps its statement, and that is said; the refused one is dropped.
  void add_query(std::unique_ptr<KivQuery> query, diagnostics& faults);

  KivQuery* find_query(std::uint32_t qid) const;  // null when there is none

  void check_times(const moment& end_time);
  template <class Action>
  void for_each_ascending(Action action) const {
    for (const auto* entry : in_ascending_order(queries_)) action(*entry->second);
  }

 private:
  absl::flat_hash_map<std::uint32_t, std::unique_ptr<KivQuery>> queries_;
};

}  // namespace kiv
