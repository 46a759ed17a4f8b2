#include "replay/kiv_malid.h"

#include <cstdlib>

#include "replay/kiv_process_db.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"
#include "replay/memory_books.h"
#include "replay/observer.h"
#include "replay/reserve_type.h"
#include "trace/diagnostics.h"

namespace kiv {

namespace {

constexpr std::uint32_t max_colors = 1048576;

const std::string bad_color_name = "Bad Color";

}  // namespace

KivMalid::KivMalid(kiv_reader& reader, const KivReserveId& event)
    : id(event.id),
      default_size(event.default_size),
      nr_colors(event.nr_colors),
      reserve_type(event.reserve_type),
      location(event.location),
      with_free(reader),
      no_free(reader),
      reader_(reader) {
  book.nr_colors = color_count();
}

KivMalid::KivMalid(kiv_reader& reader, const char* name)
    : id(default_id_number),
      nr_colors(1),
      reserve_type(name),
      category(),
      with_free(reader),
      no_free(reader),
      reader_(reader) {
  color_names_.assign(0, "default_color");
}

std::uint32_t KivMalid::color_count() const { return nr_colors > max_colors ? 0 : nr_colors; }

void KivMalid::link_malloc_id() {
  using process_link = reserve_class::process_link;
  const reserve_class found = classify_reserve_type(reserve_type);
  if (found.category.empty()) return;
  KivProcess_db& processes = reader_.processes();
  if (found.link == process_link::mal) processes.link_mal_id(*this);
  if (found.link == process_link::xml) processes.link_xml_id(*this);
  category = found.category;
  if (found.has_description) description = found.description;
  if (found.has_reference) reference = found.reference;
  if (found.description_is_session) {
    const auto pid = static_cast<std::uint32_t>(std::strtoll(reference.c_str(), nullptr, 10));
    description = processes.get_process(pid)->session_name();
  }
}

void KivMalid::set_color(std::uint32_t color, std::string_view name) {
  if (color >= color_count()) return;
  color_names_.assign(color, std::string(name));
  book.renew_color(color);
}

const std::string& KivMalid::color_name(std::uint32_t color) const {
  const std::string* name = color_names_.find(color);
  return name == nullptr ? bad_color_name : *name;
}

void KivMalid::free_id(bool verbose, std::int64_t cause_location) {
  if (verbose) reader_.faults().differing_id_freed();
  tell_of_free(kiv_e_free_id, cause_location);
  handle_clear_mem(verbose, kiv_e_free_id);
  book.clearstats();
  active = false;
}

void KivMalid::reset_id(bool verbose, std::int64_t cause_location) {
  if (verbose) reader_.faults().differing_id_reset();
  tell_of_free(kiv_e_reset_id, cause_location);
  handle_clear_mem(verbose, kiv_e_reset_id);
  book.clearstats_all();
}

void KivMalid::tell_of_free(kiv_type type, std::int64_t cause_location) {
  const memory_books books =
      find_memory_books(reader_.reserve_ids(), *this, *reader_.cc_curr_proc());
  memory_change change{.type = type, .location = cause_location, .id = id, .books = &books};
  change.record = reader_.reserve_ids().count_free_of_id();
  const KivStatSize<std::uint64_t>& wf = book.stat.cur_wf;
  const KivStatSize<std::uint64_t>& nf = book.stat.cur_nf;
  change.size = wrapping_add(wf.size, nf.size);
  change.tot_size = wrapping_add(wf.tot_size, nf.tot_size);
  const auto negative = [](std::uint64_t size) {
    return static_cast<std::int64_t>(wrapping_sub(std::uint64_t{0}, size));
  };
  change.size_change = negative(change.size);
  change.tot_size_change = negative(change.tot_size);
  reader_.observer().memory_changed(change);
}

void KivMalid::handle_clear_mem(bool verbose, kiv_type type) {
  diagnostics& faults = reader_.faults();
  const auto& stat = book.stat;
  if (verbose) faults.id_wf_totals(id, reserve_type, stat.cur_wf.size, stat.cur_wf.tot_size);
  with_free.clear_all_mem(color_count(), verbose, type);
  if (verbose) {
    tell_colors(false);
    faults.id_nf_totals(stat.cur_nf.size, stat.cur_nf.tot_size);
    tell_colors(true);
  }
  no_free.clear_all_mem(color_count(), verbose, type);
}

void KivMalid::tell_colors(bool no_free_memory) const {
  const KivStat<std::uint64_t> none(color_stat_divisor);
  for (std::uint32_t color = 0; color < color_count(); ++color) {
    const KivStat<std::uint64_t>* bundle = book.find_color(color);
    if (bundle == nullptr) bundle = &none;
    const auto& live = no_free_memory ? bundle->cur_nf : bundle->cur_wf;
    reader_.faults().color_totals(color, live.tot_size, live.size);
  }
}

}  // namespace kiv
