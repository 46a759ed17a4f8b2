#include "replay/kiv_hashloc.h"

#include <algorithm>

#include "trace/diagnostics.h"

namespace kiv {

void KivHashLoc_db::add_hashloc(const KivHashLoc& event, diagnostics& faults) {
  const auto place = static_cast<std::uint32_t>(entries_.size() + 1);
  if (!index_.try_emplace(event.location, place).second) {
    faults.hashloc_known_already(event.location);
    return;
  }
  entries_.push_back({event.location, std::string(event.source_line)});
}

std::vector<const KivHashLoc_db::entry*> KivHashLoc_db::ordered() const {
  std::vector<const entry*> all;
  all.reserve(entries_.size());
  for (const entry& one : entries_) all.push_back(&one);
  std::sort(all.begin(), all.end(),
            [](const entry* a, const entry* b) { return a->location < b->location; });
  return all;
}

}  // namespace kiv
