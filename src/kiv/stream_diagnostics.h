#pragma once

#include <fmt/format.h>

#include <ostream>

#include "trace/diagnostics.h"

namespace kiv {

// Words every message of kiv: to the standard output what is wrong inside traces and which tables
// there are, to the error stream all else. The texts are read by programs and stay as they are, odd
// spellings included.
class stream_diagnostics final : public diagnostics {
 public:
  stream_diagnostics(int debug_level, std::ostream& out, std::ostream& err)
      : diagnostics(debug_level), out_(out), err_(err) {}

  void header_not_opened(const std::string& path) override;
  void header_not_well_formed(const char* error, std::uint64_t line) override;
  void header_without_root(const std::string& path) override;
  void element_pushed(const char* class_name) override;
  void element_popped(const char* class_name) override;
  void xml_started(const char* tag, std::string_view top_element) override;
  void xml_ended(const char* tag, std::string_view top_element) override;
  void xml_text(std::string_view text) override;
  void header_tag_started(const char* tag) override;
  void header_tag_ended(const char* tag) override;
  void unknown_tag_in_header(const char* tag) override;
  void unknown_tag_in_entry(const char* tag) override;
  void unknown_tag_in_kivfile(const char* tag) override;
  void record_defined(int tag, const std::string& name, const std::string& description,
                      const std::string& format) override;
  void field_defined(const std::string& name, int size) override;

  void file_opening(const std::string& path) override;
  void file_not_opened(const std::string& path) override;
  void file_closing(const std::string& path) override;
  void replay_without_file(const std::string& path) override;

  void record_started(char tag, std::uint32_t size, std::uint32_t event_number) override;
  void out_of_sync(std::uint32_t event_number) override;
  void illegal_event(std::uint32_t event_number, std::uint64_t file_offset) override;

  void listed(const KivMallocWF& event) override;
  void listed(const KivMallocNF& event) override;
  void listed(const KivFree& event) override;
  void listed(const KivFreeRealloc& event) override;
  void listed(const KivSbrk& event) override;
  void listed(const KivSbrkGap& event) override;
  void listed(const KivMallInfo& event) override;
  void listed(const KivTimeStamp& event) override;
  void listed(const KivMarker& event) override;
  void listed(const KivReserveId& event, std::string_view source_line) override;
  void listed(const KivReserveIdColors& event) override;
  void listed(const KivFreeOrReset& event, std::string_view source_line) override;
  void listed(const KivHashLoc& event) override;
  void listed(const KivObjectLoad& event, std::string_view object_name) override;
  void listed(const KivObjectLink& event) override;
  void listed(const KivFunctionName& event) override;
  void listed(const KivProcessStart& event) override;
  void listed(const KivProcessEnd& event) override;
  void listed(const KivProcessSpecialLoad& event) override;
  void listed(const KivSchedule& event) override;
  void listed(const KivFlowIn& event) override;
  void listed(const KivFlowOut& event) override;
  void listed(const KivHoskFlowIn& event) override;
  void listed(const KivHoskFlowOut& event) override;
  void listed(const KivQueryIn& event) override;
  void listed(const KivQueryOut& event) override;
  void listed(const KivSymbolNew& event) override;
  void listed(const KivSymbolDims& event) override;
  void listed(const KivSymbolDdName& event) override;
  void listed(const KivSymbolAlloc& event) override;

  void function_named(std::uint32_t owner, std::int32_t number, std::string_view name) override;
  void object_linked(std::uint32_t pid, std::uint32_t object) override;
  void scheduled(std::uint32_t from_pid, std::string_view from_name, std::uint32_t to_pid,
                 std::string_view to_name) override;
  void function_entered(std::uint32_t depth, std::string_view caller,
                        std::string_view callee) override;
  void function_left(std::uint32_t depth, std::string_view back_in, std::string_view left) override;
  void hosk_entered(std::uint32_t depth, std::string_view function) override;
  void hosk_left(std::uint32_t depth, std::string_view function) override;

  void id_reserved(std::uint32_t id, std::string_view reserve_type) override;
  void object_loaded(std::uint32_t id, std::string_view name) override;
  void process_ended(std::string_view session_name, std::uint32_t pid) override;
  void query_entered(char operation) override;
  void query_left(char operation) override;

  void realloc_source_missing(std::int64_t addr) override;
  void freed_block_missing(std::int64_t addr) override;
  void resized_block_missing(std::int64_t addr) override;
  void address_live_already(std::int64_t addr, std::uint64_t record, std::uint32_t size,
                            std::string_view source_line) override;
  void id_reserved_twice(std::uint32_t id) override;
  void wf_total_differs(std::uint32_t id, std::uint64_t recorded, std::uint64_t actual) override;
  void nf_total_differs(std::uint32_t id, std::uint64_t recorded, std::uint64_t actual) override;
  void differing_id_freed() override;
  void differing_id_reset() override;
  void id_wf_totals(std::uint32_t id, std::string_view reserve_type, std::uint64_t size,
                    std::uint64_t tot_size) override;
  void id_nf_totals(std::uint64_t size, std::uint64_t tot_size) override;
  void color_totals(std::uint32_t color, std::uint64_t tot_size, std::uint64_t size) override;
  void blocks_given_back(std::uint64_t size, std::uint64_t tot_size) override;
  void blocks_of_color(std::uint32_t color, std::uint64_t tot_size, std::uint64_t size) override;

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

  void table_opened(const std::string& path, bool created) override;
  void cannot_write(const std::string& path) override;
  void trace_begins(const std::string& header_name) override;
  void trace_failed() override;
  void version_not_supported(int version) override;

 private:
  template <class... Values>
  void list(fmt::format_string<Values...> labels, Values&&... values);
  void list_address(std::uint32_t id, std::uint32_t color, std::int64_t addr);

  std::ostream& out_;
  std::ostream& err_;
};

}  // namespace kiv
