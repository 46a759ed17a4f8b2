#include "memory/freemem_row.h"

#include "output/csv_row.h"
#include "reader/kiv_reader.h"

namespace kiv {

void write_freemem_row(kiv_reader& reader, std::uint64_t ended, std::uint64_t cause,
                       kiv_type type) {
  csv_row row(reader.table(replay_table::freemem));
  row.raw(reader.run_columns()).cols(ended, cause).end_line(static_cast<char>(type));
}

}  // namespace kiv
