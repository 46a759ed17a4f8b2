#pragma once

#include <cstdint>

#include "replay/kiv_stat.h"

namespace kiv {

class KivMalid;
class KivProcess;
class KivReserveId_db;

// The books of one process that a memory record reaches: of its id and colour none, where a replay
// leaves out what only rows show.
struct process_books {
  KivStat<std::int64_t>* whole = nullptr;
  KivStat<std::int64_t>* id = nullptr;     // the allocation id within the process
  KivStat<std::int32_t>* color = nullptr;  // its colour; null when the id has no such colour

  // The id's book takes with-free sizes modulo 2^32, the colour's all sizes.
  void update_wf(std::uint64_t size, std::uint64_t tot_size) const {
    if (id != nullptr) {
      id->add_wf(static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(tot_size));
    }
    if (color != nullptr) {
      color->add_wf(static_cast<std::int32_t>(size), static_cast<std::int32_t>(tot_size));
    }
    whole->add_wf(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
  }
  void update_nf(std::uint64_t size, std::uint64_t tot_size) const {
    if (id != nullptr) {
      id->add_nf(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
    }
    if (color != nullptr) {
      color->add_nf(static_cast<std::int32_t>(size), static_cast<std::int32_t>(tot_size));
    }
    whole->add_nf(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
  }
  void update_fr(std::uint64_t size, std::uint64_t tot_size) const {
    if (id != nullptr) {
      id->add_fr(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
    }
    if (color != nullptr) {
      color->add_fr_sizes(static_cast<std::int32_t>(size), static_cast<std::int32_t>(tot_size));
    }
    whole->add_fr(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
  }
};

// All books that a memory record reaches, found once per record.
struct memory_books {
  KivMalid* id = nullptr;
  KivStat<std::uint64_t>* color = nullptr;  // of the id; null when the colour has no bundle
  process_books process;
};

// The books of an allocation id as the record of number `id` reaches them in `process`. The number
// counts: unknown numbers share the default id, but each has a book of its own in the process.
memory_books find_memory_books(KivReserveId_db& ids, std::uint32_t id, std::uint32_t color,
                               KivProcess& process);
// The same for a record about all colours of `id` itself, whatever its number leads to by now.
memory_books find_memory_books(KivReserveId_db& ids, KivMalid& id, KivProcess& process);

}  // namespace kiv
