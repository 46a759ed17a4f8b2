#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "events/kiv_event.h"
#include "header/moment_text.h"
#include "memory/kiv_malid_stat.h"
#include "memory/kiv_mem.h"
#include "memory/number_table.h"

namespace kiv {

inline constexpr std::uint32_t default_id_number = 99999999;

// An allocation id: the record that reserved it, and from then on its books and live blocks.
class KivReserveId final : public KivContext {
 public:
  // Decodes the record at the reader's position.
  explicit KivReserveId(kiv_reader* reader);
  // The id that serves every number that was not reserved: one colour, no colour bundle, inactive.
  KivReserveId(kiv_reader* reader, const char* name);

  void traceevent(std::ostream& os) const override;

  // Classifies the id by its reservation text and links it to the process that the text names.
  void link_malloc_id();

  // Names a colour and gives it a fresh bundle; colours beyond the id's number are ignored.
  void set_color(std::uint32_t color, const std::string& name);
  // "Bad Color" for a colour that was never named.
  const std::string& color_name(std::uint32_t color) const;
  // The number of colours that count: an implausible number in the record counts as none.
  std::uint32_t color_count() const;

  // Give back all blocks of the id. A freed id is dead and keeps its peaks; a reset one lives on.
  void free_id(bool verbose, std::int64_t cause_location);
  void reset_id(bool verbose, std::int64_t cause_location);

  // The columns of the id's `malid` row behind run id and pid.
  void columns(csv_row& row) const;
  std::ostream& dumpinfo(std::ostream& os) const { return dump_columns(*this, os); }

  std::uint32_t id = 0;
  std::uint32_t default_size = 0;
  std::uint32_t nr_colors = 0;  // as the record says it
  std::string reserve_type;
  std::uint32_t location_text = 0;  // in the book of source locations
  std::int64_t location = 0;

  moment_text start_time;
  moment_text end_time;
  std::uint64_t start_record = 0;
  std::uint64_t end_record = 0;
  bool active = false;
  std::string_view category = "general";  // of static storage, as all its values are
  std::string description;
  std::string reference;

  KivMalidStat<std::uint64_t, std::uint64_t> book;
  KivMem<KivMallocWF*> with_free;
  KivMem<KivMallocNF*> no_free;

 private:
  void setelems() override;
  void write_free_row(kiv_type type, std::int64_t cause_location);
  void handle_clear_mem(bool verbose, kiv_type type);
  void report_colors(bool no_free_memory) const;

  color_table<std::optional<std::string>> color_names_;
};

}  // namespace kiv
