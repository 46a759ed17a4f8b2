#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "output/csv_file.h"

namespace kiv {

class csv_file_sequence;
class sql_script;

// The tables that a trace writes while it is replayed, in the order in which they are created.
enum class replay_table : std::uint8_t {
  memory,
  sbrk,
  queryevents,
  marker,
  freemem,
  arena,
  arcs,
  symbols,
  flowdata,
  flow,
};

// The open files of these tables.
class replay_tables {
 public:
  replay_tables(csv_file_sequence* seq, sql_script* script, const std::string& directory,
                const std::string& runid, bool first);
  replay_tables(const replay_tables&) = delete;
  replay_tables& operator=(const replay_tables&) = delete;
  ~replay_tables();

  csv_file& file(replay_table which) { return *files_[static_cast<std::size_t>(which)]; }

  // From now on the tables that are split go on in a new file once they hold `limit` bytes.
  void split_at(std::int64_t limit);

 private:
  std::array<std::optional<csv_file>, 10> files_;
};

}  // namespace kiv
