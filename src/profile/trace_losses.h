#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "profile/profile.h"
#include "trace/diagnostics.h"

namespace kiv {

class kiv_reader;

// What keeps a trace from being complete.
enum class loss_kind : std::uint8_t {
  header_not_closed,
  header_damaged,
  data_file_missing,
  no_data_file,
  data_file_cut,
  record_of_unknown_type,
  record_out_of_sync,
  free_without_block,
  resize_without_block,
  realloc_source_missing,
  address_live_already,
  id_reserved_twice,
  id_total_differs,
  location_announced_twice,
  object_loaded_twice,
  function_unknown,
  process_unknown,
  symbol_fault,
  query_fault,
};
inline constexpr std::size_t loss_kind_count = 19;

// The name by which reports show it: of several, as in "2 frees without a block".
std::string_view name_of(loss_kind kind);

// Counts the faults of one trace by kind and keeps the place of each kind's first.
class trace_losses final : public diagnostics {
 public:
  // From now on places are those of the record that is being read.
  void follow(const kiv_reader& reader) { reader_ = &reader; }

  // By kind; those that occurred.
  std::vector<loss> found() const;

  void header_not_well_formed(const char* error, std::uint64_t line) override;
  void header_not_closed(const std::string& path) override;
  void file_not_opened(const std::string& path) override;
  void replay_without_file(const std::string& path) override;
  void file_shorter_than_recorded(const std::string& path, std::int64_t recorded,
                                  std::int64_t held) override;
  void out_of_sync(std::uint32_t event_number) override;
  void illegal_event(std::uint32_t event_number, std::uint64_t file_offset) override;
  void realloc_source_missing(std::int64_t addr) override;
  void freed_block_missing(std::int64_t addr) override;
  void resized_block_missing(std::int64_t addr) override;
  void address_live_already(std::int64_t addr, std::uint64_t record, std::uint32_t size,
                            std::string_view source_line) override;
  void id_reserved_twice(std::uint32_t id) override;
  void wf_total_differs(std::uint32_t id, std::uint64_t recorded, std::uint64_t actual) override;
  void nf_total_differs(std::uint32_t id, std::uint64_t recorded, std::uint64_t actual) override;
  void hashloc_known_already(std::int64_t location) override;
  void object_loaded_twice(std::uint32_t id) override;
  void function_number_negative(std::int32_t number) override;
  void function_number_unknown(std::int32_t number) override;
  void reserved_process_missing(std::uint32_t pid) override;
  void symbol_known_already() override;
  void symbol_unknown() override;
  void symbol_without_category(std::string_view name) override;
  void query_operation_unknown(std::uint32_t operation) override;
  void query_not_open(std::uint32_t qid) override;
  void query_known_already(std::uint32_t qid, std::string_view refused,
                           std::string_view kept) override;

 private:
  void count(loss_kind kind, const std::string& place);
  // At the record that is being read.
  void count(loss_kind kind);

  struct tally {
    std::uint64_t count = 0;
    std::string first;
  };
  std::array<tally, loss_kind_count> tallies_;
  const kiv_reader* reader_ = nullptr;
};

}  // namespace kiv
