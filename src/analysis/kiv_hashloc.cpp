#include "analysis/kiv_hashloc.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "events/event_fields.h"
#include "output/csv_row.h"

namespace kiv {

void KivHashLoc::setelems() {
  readelem(location);
  readelem(source_line);
}

KivHashLoc_db::KivHashLoc_db() : unknown_text_("unknown MalSrc location") {}

void KivHashLoc_db::add_hashloc(hashloc_ptr record) {
  const auto place = static_cast<std::uint32_t>(records_.size() + 1);
  if (!index_.try_emplace(record->location, place).second) {
    std::cout << "Error hashloc " << record->location << " already found! \n";
    return;
  }
  records_.push_back(std::move(record));
}

void KivHashLoc_db::dump_db(std::ostream& os, std::string_view run_columns) const {
  std::vector<const KivHashLoc*> ordered;
  ordered.reserve(records_.size());
  for (const auto& record : records_) ordered.push_back(record.get());
  std::sort(ordered.begin(), ordered.end(),
            [](const KivHashLoc* a, const KivHashLoc* b) { return a->location < b->location; });
  for (const KivHashLoc* record : ordered) {
    csv_row row(os);
    row.raw(run_columns);
    record->columns(row);
    row.end_line();
  }
}

}  // namespace kiv
