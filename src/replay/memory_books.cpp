#include "replay/memory_books.h"

#include "replay/kiv_process.h"
#include "replay/kiv_reserve_id_db.h"

namespace kiv {

memory_books find_memory_books(KivMalid& id, KivProcess& process) {
  memory_books books;
  books.id = &id;
  books.process = {&process.statistics(), &process.get_mc_stat(id.id)->stat, nullptr};
  return books;
}

memory_books find_memory_books(KivReserveId_db& ids, std::uint32_t id, std::uint32_t color,
                               KivProcess& process) {
  memory_books books;
  books.id = ids.get_reserve_id(id);
  books.color = books.id->book.find_color(color);
  auto& in_process = *process.get_mc_stat(id);
  books.process = {&process.statistics(), &in_process.stat, in_process.get_color(color)};
  return books;
}

}  // namespace kiv
