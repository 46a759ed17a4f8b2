#include "memory/memory_books.h"

#include "analysis/kiv_process.h"
#include "memory/kiv_reserve_id_db.h"
#include "reader/kiv_reader.h"

namespace kiv {

memory_books find_memory_books(KivReserveId& id, KivProcess& process) {
  memory_books books;
  books.reserve_id = &id;
  books.process = {&process.statistics(), &process.get_mc_stat(id.id)->stat, nullptr};
  return books;
}

memory_books find_memory_books(kiv_reader& reader, std::uint32_t id, std::uint32_t color,
                               KivProcess& process) {
  memory_books books;
  books.reserve_id = reader.reserve_ids().get_reserve_id(id);
  books.color = books.reserve_id->book.find_color(color);
  auto& in_process = *process.get_mc_stat(id);
  books.process = {&process.statistics(), &in_process.stat, in_process.get_color(color)};
  return books;
}

}  // namespace kiv
