#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "replay/kiv_malid_stat.h"
#include "replay/kiv_mem.h"
#include "util/moment.h"
#include "util/number_table.h"

namespace kiv {

class kiv_reader;
struct KivReserveId;

inline constexpr std::uint32_t default_id_number = 99999999;

// An allocation id with its books and live blocks.
class KivMalid {
 public:
  KivMalid(kiv_reader& reader, const KivReserveId& event);
  // The id that serves every number that was not reserved: one colour, no colour bundle, inactive.
  KivMalid(kiv_reader& reader, const char* name);

  // Classifies the id by its reservation text and links it to the process that the text names.
  void link_malloc_id();

  // Names a colour and gives it a fresh bundle; colours beyond the id's number are ignored.
  void set_color(std::uint32_t color, std::string_view name);
  // "Bad Color" for a colour that was never named.
  const std::string& color_name(std::uint32_t color) const;
  // The number of colours that count: an implausible number in the record counts as none.
  std::uint32_t color_count() const;

  // Give back all blocks of the id. A freed id is dead and keeps its peaks; a reset one lives on.
  void free_id(bool verbose, std::int64_t cause_location);
  void reset_id(bool verbose, std::int64_t cause_location);

  const std::uint32_t id;
  const std::uint32_t default_size = 0;
  const std::uint32_t nr_colors;  // as the record says it
  const std::string reserve_type;
  const std::int64_t location = 0;

  moment start_time;
  moment end_time;
  std::uint64_t start_record = 0;
  std::uint64_t end_record = 0;
  bool active = false;
  std::string_view category = "general";  // of static storage, as all its values are
  std::string description;
  std::string reference;

  KivMalidStat<std::uint64_t, std::uint64_t> book;
  KivMem with_free;
  KivMem no_free;

 private:
  void tell_of_free(kiv_type type, std::int64_t cause_location);
  void handle_clear_mem(bool verbose, kiv_type type);
  void tell_colors(bool no_free_memory) const;

  kiv_reader& reader_;
  color_table<std::optional<std::string>> color_names_;
};

}  // namespace kiv
