#include "reader/replay_tables.h"

#include "output/csv_tables.h"

namespace kiv {

replay_tables::replay_tables(csv_file_sequence* seq, sql_script* script,
                             const std::string& directory, const std::string& runid, bool first) {
  std::size_t next = 0;
  for (const csv_table& table : csv_tables()) {
    if (table.created != table_created::with_reader) continue;
    files_.at(next++).emplace(seq, script, std::string(table.name).c_str(), directory, runid,
                              first);
  }
}

// The order shows in the messages about files that could not be written whole.
replay_tables::~replay_tables() {
  using enum replay_table;
  for (const replay_table which : {sbrk, queryevents, marker, memory}) {
    files_[static_cast<std::size_t>(which)].reset();
  }
  for (auto& file : files_) file.reset();
}

void replay_tables::split_at(std::int64_t limit) {
  std::size_t next = 0;
  for (const csv_table& table : csv_tables()) {
    if (table.created != table_created::with_reader) continue;
    csv_file& file = *files_.at(next++);
    if (!table.split_by_size) continue;
    file.set_max(limit);
    file.add_check(true);
  }
}

}  // namespace kiv
