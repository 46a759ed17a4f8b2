#include "memory/memory_books.h"

#include "analysis/kiv_process.h"
#include "memory/kiv_reserve_id_db.h"
#include "reader/kiv_reader.h"

namespace kiv {

void process_books::update_wf(std::uint64_t size, std::uint64_t tot_size) {
  id->add_wf(static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(tot_size));
  if (color != nullptr) {
    color->add_wf(static_cast<std::int32_t>(size), static_cast<std::int32_t>(tot_size));
  }
  whole->add_wf(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
}

void process_books::update_nf(std::uint64_t size, std::uint64_t tot_size) {
  id->add_nf(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
  if (color != nullptr) {
    color->add_nf(static_cast<std::int32_t>(size), static_cast<std::int32_t>(tot_size));
  }
  whole->add_nf(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
}

void process_books::update_fr(std::uint64_t size, std::uint64_t tot_size) {
  id->add_fr(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
  if (color != nullptr) {
    color->add_fr_sizes(static_cast<std::int32_t>(size), static_cast<std::int32_t>(tot_size));
  }
  whole->add_fr(static_cast<std::int64_t>(size), static_cast<std::int64_t>(tot_size));
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
