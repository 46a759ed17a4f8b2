#include "memory/kiv_reserve_id.h"

#include <cstdlib>
#include <iostream>

#include "analysis/kiv_hashloc.h"
#include "analysis/kiv_process.h"
#include "analysis/kiv_process_db.h"
#include "events/event_fields.h"
#include "events/memory_events.h"
#include "memory/reserve_type.h"

namespace kiv {

namespace {

constexpr std::uint32_t max_colors = 1048576;

const std::string bad_color_name = "Bad Color";

}  // namespace

KivReserveId::KivReserveId(kiv_reader* reader)
    : KivContext(kiv_e_reserve_id, reader), with_free(reader), no_free(reader) {
  setelems();
  book.nr_colors = color_count();
}

KivReserveId::KivReserveId(kiv_reader* reader, const char* name)
    : KivContext(kiv_e_reserve_id, reader),
      id(default_id_number),
      nr_colors(1),
      reserve_type(name),
      category(),
      with_free(reader),
      no_free(reader) {
  color_names_.assign(0, "default_color");
}

void KivReserveId::setelems() {
  readelems(id, default_size);
  readloc(location_text, location);
  readelem(nr_colors);
  readelem(reserve_type);
}

std::uint32_t KivReserveId::color_count() const { return nr_colors > max_colors ? 0 : nr_colors; }

void KivReserveId::link_malloc_id() {
  using process_link = reserve_class::process_link;
  const reserve_class found = classify_reserve_type(reserve_type);
  if (found.category.empty()) return;
  if (found.link == process_link::mal) reader()->processes().link_mal_id(*this);
  if (found.link == process_link::xml) reader()->processes().link_xml_id(*this);
  category = found.category;
  if (found.has_description) description = found.description;
  if (found.has_reference) reference = found.reference;
  if (found.description_is_session) {
    const auto pid = static_cast<std::uint32_t>(std::strtoll(reference.c_str(), nullptr, 10));
    description = reader()->processes().get_process(pid)->session_name();
  }
}

void KivReserveId::set_color(std::uint32_t color, const std::string& name) {
  if (color >= color_count()) return;
  color_names_.assign(color, name);
  book.renew_color(color);
}

const std::string& KivReserveId::color_name(std::uint32_t color) const {
  const std::string* name = color_names_.find(color);
  return name == nullptr ? bad_color_name : *name;
}

void KivReserveId::free_id(bool verbose, std::int64_t cause_location) {
  if (verbose) std::cout << "FREE ID \n";
  write_free_row(kiv_e_free_id, cause_location);
  handle_clear_mem(verbose, kiv_e_free_id);
  book.clearstats();
  active = false;
}

void KivReserveId::reset_id(bool verbose, std::int64_t cause_location) {
  if (verbose) std::cout << "RESET ID \n";
  write_free_row(kiv_e_reset_id, cause_location);
  handle_clear_mem(verbose, kiv_e_reset_id);
  book.clearstats_all();
}

void KivReserveId::write_free_row(kiv_type type, std::int64_t cause_location) {
  KivFRID event(type, reader(), *this, cause_location);
  event.setelems();
  event.write_row();
}

void KivReserveId::handle_clear_mem(bool verbose, kiv_type type) {
  if (verbose) {
    std::cout << "totals for id " << id << " " << reserve_type << '\n'
              << " size_wf     " << book.stat.cur_wf.size << '\n'
              << " size_wf_tot " << book.stat.cur_wf.tot_size << '\n';
  }
  with_free.clear_all_mem(color_count(), verbose, type);
  if (verbose) {
    report_colors(false);
    std::cout << " size_nf     " << book.stat.cur_nf.size << '\n'
              << " size_nf_tot " << book.stat.cur_nf.tot_size << '\n';
    report_colors(true);
  }
  no_free.clear_all_mem(color_count(), verbose, type);
}

void KivReserveId::report_colors(bool no_free_memory) const {
  const KivStat<std::uint64_t> none(color_stat_divisor);
  for (std::uint32_t color = 0; color < color_count(); ++color) {
    const KivStat<std::uint64_t>* bundle = book.find_color(color);
    if (bundle == nullptr) bundle = &none;
    const auto& live = no_free_memory ? bundle->cur_nf : bundle->cur_wf;
    std::cout << " c> " << color << " tot_size " << live.tot_size << " size     " << live.size
              << '\n';
  }
}

void KivReserveId::columns(csv_row& row) const {
  const auto cut = [](std::string_view text, std::size_t length) { return text.substr(0, length); };
  row.col(id).col(location).col(reserve_type);
  row.col(cut(category, 10)).col(cut(description, 300)).col(cut(reference, 200));
  row.col(default_size).col(start_time).col(end_time).col(start_record).col(end_record);
}

}  // namespace kiv
