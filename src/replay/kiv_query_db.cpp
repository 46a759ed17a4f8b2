#include "replay/kiv_query_db.h"

#include <utility>

#include "trace/diagnostics.h"

namespace kiv {

void KivQuery_db::add_query(std::unique_ptr<KivQuery> query, diagnostics& faults) {
  const auto [entry, added] = queries_.try_emplace(query->qid, nullptr);
  if (!added) {
    faults.query_known_already(query->qid, query->query, entry->second->query);
    return;
  }
  entry->second = std::move(query);
}

KivQuery* KivQuery_db::find_query(std::uint32_t qid) const {
  const auto entry = queries_.find(qid);
  return entry == queries_.end() ? nullptr : entry->second.get();
}

void KivQuery_db::check_times(const moment& end_time) {
  for (const auto& [qid, query] : queries_) query->check_times(end_time);
}

}  // namespace kiv
