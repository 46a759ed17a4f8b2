#include "replay/memory_books.h"

#include "replay/kiv_process.h"
#include "replay/kiv_reserve_id_db.h"

namespace kiv {

memory_books find_memory_books(KivReserveId_db& ids, KivMalid& id, KivProcess& process) {
  memory_books books{&id, nullptr, {&process.statistics(), nullptr, nullptr}};
  if (ids.keeps_row_books()) books.process.id = &process.get_mc_stat(id.id)->stat;
  return books;
}

memory_books find_memory_books(KivReserveId_db& ids, std::uint32_t id, std::uint32_t color,
                               KivProcess& process) {
  memory_books books{ids.get_reserve_id(id), nullptr, {&process.statistics(), nullptr, nullptr}};
  if (ids.keeps_row_books()) {
    books.color = books.id->book.find_color(color);
    auto& in_process = *process.get_mc_stat(id);
    books.process.id = &in_process.stat;
    books.process.color = in_process.get_color(color);
  }
  return books;
}

}  // namespace kiv
