#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "analysis/kiv_query.h"

namespace kiv {

// The book of SQL statements: qid -> statement.
class KivQuery_db {
 public:
  // A qid that is known already keeps its statement, with a message on the standard output; the
  // refused one is dropped.
  void add_query(std::unique_ptr<KivQuery> query);

  KivQuery* find_query(std::uint32_t qid) const;  // null when there is none

  void check_times(const moment_text& end_time);
  void dump_db(std::ostream& os, std::string_view run_columns) const;

 private:
  absl::flat_hash_map<std::uint32_t, std::unique_ptr<KivQuery>> queries_;
};

}  // namespace kiv
