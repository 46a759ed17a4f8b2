#include "analysis/kiv_query_db.h"

#include <iostream>
#include <utility>

#include "output/ascending.h"

namespace kiv {

void KivQuery_db::add_query(std::unique_ptr<KivQuery> query) {
  const auto [entry, added] = queries_.try_emplace(query->qid, nullptr);
  if (!added) {
    std::cout << "Error in Query_db: " << query->qid << " already in db\n"
              << "Query: \n"
              << query->query << "\n vs \n"
              << entry->second->query << '\n';
    return;
  }
  entry->second = std::move(query);
}

KivQuery* KivQuery_db::find_query(std::uint32_t qid) const {
  const auto entry = queries_.find(qid);
  return entry == queries_.end() ? nullptr : entry->second.get();
}

void KivQuery_db::check_times(const moment_text& end_time) {
  for (const auto& [qid, query] : queries_) query->check_times(end_time);
}

void KivQuery_db::dump_db(std::ostream& os, std::string_view run_columns) const {
  for (const auto* entry : in_ascending_order(queries_)) {
    csv_row row(os);
    row.raw(run_columns);
    entry->second->print(row);
    row.end_text();
  }
}

}  // namespace kiv
