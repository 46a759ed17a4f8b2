#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "trace/code_events.h"
#include "trace/heap_events.h"
#include "trace/id_events.h"
#include "trace/memory_events.h"
#include "trace/process_events.h"
#include "trace/query_events.h"
#include "trace/symbol_events.h"
#include "trace/time_marker_events.h"

namespace kiv {

// What a run has to say besides its tables: faults of traces and of the system, progress, debug
// lines. One function per message; whoever derives from this words, counts or drops them. Faults
// and progress are told always, the rest at the debug level at which it is wanted.
class diagnostics {
 public:
  explicit diagnostics(int debug_level = 0) : debug_level_(debug_level) {}
  diagnostics(const diagnostics&) = delete;
  diagnostics& operator=(const diagnostics&) = delete;
  virtual ~diagnostics() = default;

  // 0 silent, 1 progress, 2 every record listed.
  bool tells_progress() const { return debug_level_ > 0; }
  bool lists_records() const { return debug_level_ > 1; }

  // Header files: faults.
  virtual void header_not_opened(const std::string& /*path*/) {}
  virtual void header_not_well_formed(const char* /*error*/, std::uint64_t /*line*/) {}
  virtual void header_without_root(const std::string& /*path*/) {}
  virtual void header_not_closed(const std::string& /*path*/) {}
  // Header files: progress.
  virtual void element_pushed(const char* /*class_name*/) {}
  virtual void element_popped(const char* /*class_name*/) {}
  virtual void xml_started(const char* /*tag*/, std::string_view /*top_element*/) {}
  virtual void xml_ended(const char* /*tag*/, std::string_view /*top_element*/) {}
  virtual void xml_text(std::string_view /*text*/) {}
  virtual void header_tag_started(const char* /*tag*/) {}
  virtual void header_tag_ended(const char* /*tag*/) {}
  virtual void unknown_tag_in_header(const char* /*tag*/) {}
  virtual void unknown_tag_in_entry(const char* /*tag*/) {}
  virtual void unknown_tag_in_kivfile(const char* /*tag*/) {}
  virtual void record_defined(int /*tag*/, const std::string& /*name*/,
                              const std::string& /*description*/, const std::string& /*format*/) {}
  virtual void field_defined(const std::string& /*name*/, int /*size*/) {}

  // Data files.
  virtual void file_opening(const std::string& /*path*/) {}
  virtual void file_not_opened(const std::string& /*path*/) {}
  virtual void file_closing(const std::string& /*path*/) {}
  virtual void replay_without_file(const std::string& /*path*/) {}
  virtual void file_shorter_than_recorded(const std::string& /*path*/, std::int64_t /*recorded*/,
                                          std::int64_t /*held*/) {}

  // Records. `event_number` counts the records of the trace.
  virtual void record_started(char /*tag*/, std::uint32_t /*size*/,
                              std::uint32_t /*event_number*/) {}
  virtual void out_of_sync(std::uint32_t /*event_number*/) {}
  virtual void illegal_event(std::uint32_t /*event_number*/, std::uint64_t /*file_offset*/) {}

  // The listing of a decoded record; what its books add to it comes as further arguments.
  virtual void listed(const KivMallocWF& /*event*/) {}
  virtual void listed(const KivMallocNF& /*event*/) {}
  virtual void listed(const KivFree& /*event*/) {}
  virtual void listed(const KivFreeRealloc& /*event*/) {}
  virtual void listed(const KivSbrk& /*event*/) {}
  virtual void listed(const KivSbrkGap& /*event*/) {}
  virtual void listed(const KivMallInfo& /*event*/) {}
  virtual void listed(const KivTimeStamp& /*event*/) {}
  virtual void listed(const KivMarker& /*event*/) {}
  virtual void listed(const KivReserveId& /*event*/, std::string_view /*source_line*/) {}
  virtual void listed(const KivReserveIdColors& /*event*/) {}
  virtual void listed(const KivFreeOrReset& /*event*/, std::string_view /*source_line*/) {}
  virtual void listed(const KivHashLoc& /*event*/) {}
  virtual void listed(const KivObjectLoad& /*event*/, std::string_view /*object_name*/) {}
  virtual void listed(const KivObjectLink& /*event*/) {}
  virtual void listed(const KivFunctionName& /*event*/) {}
  virtual void listed(const KivProcessStart& /*event*/) {}
  virtual void listed(const KivProcessEnd& /*event*/) {}
  virtual void listed(const KivProcessSpecialLoad& /*event*/) {}
  virtual void listed(const KivSchedule& /*event*/) {}
  virtual void listed(const KivFlowIn& /*event*/) {}
  virtual void listed(const KivFlowOut& /*event*/) {}
  virtual void listed(const KivHoskFlowIn& /*event*/) {}
  virtual void listed(const KivHoskFlowOut& /*event*/) {}
  virtual void listed(const KivQueryIn& /*event*/) {}
  virtual void listed(const KivQueryOut& /*event*/) {}
  virtual void listed(const KivSymbolNew& /*event*/) {}
  virtual void listed(const KivSymbolDims& /*event*/) {}
  virtual void listed(const KivSymbolDdName& /*event*/) {}
  virtual void listed(const KivSymbolAlloc& /*event*/) {}

  // Further lines about a record that was applied, as its listing has them.
  virtual void function_named(std::uint32_t /*owner*/, std::int32_t /*number*/,
                              std::string_view /*name*/) {}
  virtual void object_linked(std::uint32_t /*pid*/, std::uint32_t /*object*/) {}
  virtual void scheduled(std::uint32_t /*from_pid*/, std::string_view /*from_name*/,
                         std::uint32_t /*to_pid*/, std::string_view /*to_name*/) {}
  virtual void function_entered(std::uint32_t /*depth*/, std::string_view /*caller*/,
                                std::string_view /*callee*/) {}
  virtual void function_left(std::uint32_t /*depth*/, std::string_view /*back_in*/,
                             std::string_view /*left*/) {}
  virtual void hosk_entered(std::uint32_t /*depth*/, std::string_view /*function*/) {}
  virtual void hosk_left(std::uint32_t /*depth*/, std::string_view /*function*/) {}

  // Progress of the replay.
  virtual void id_reserved(std::uint32_t /*id*/, std::string_view /*reserve_type*/) {}
  virtual void object_loaded(std::uint32_t /*id*/, std::string_view /*name*/) {}
  virtual void process_ended(std::string_view /*session_name*/, std::uint32_t /*pid*/) {}
  virtual void query_entered(char /*operation*/) {}
  virtual void query_left(char /*operation*/) {}

  // Memory: faults.
  virtual void realloc_source_missing(std::int64_t /*addr*/) {}
  virtual void freed_block_missing(std::int64_t /*addr*/) {}
  virtual void resized_block_missing(std::int64_t /*addr*/) {}
  virtual void address_live_already(std::int64_t /*addr*/, std::uint64_t /*record*/,
                                    std::uint32_t /*size*/, std::string_view /*source_line*/) {}
  virtual void id_reserved_twice(std::uint32_t /*id*/) {}
  virtual void wf_total_differs(std::uint32_t /*id*/, std::uint64_t /*recorded*/,
                                std::uint64_t /*actual*/) {}
  virtual void nf_total_differs(std::uint32_t /*id*/, std::uint64_t /*recorded*/,
                                std::uint64_t /*actual*/) {}
  // What an id held whose totals differ: in this order, as it is given back.
  virtual void differing_id_freed() {}
  virtual void differing_id_reset() {}
  virtual void id_wf_totals(std::uint32_t /*id*/, std::string_view /*reserve_type*/,
                            std::uint64_t /*size*/, std::uint64_t /*tot_size*/) {}
  virtual void id_nf_totals(std::uint64_t /*size*/, std::uint64_t /*tot_size*/) {}
  virtual void color_totals(std::uint32_t /*color*/, std::uint64_t /*tot_size*/,
                            std::uint64_t /*size*/) {}
  virtual void blocks_given_back(std::uint64_t /*size*/, std::uint64_t /*tot_size*/) {}
  virtual void blocks_of_color(std::uint32_t /*color*/, std::uint64_t /*tot_size*/,
                               std::uint64_t /*size*/) {}

  // Code: faults.
  virtual void hashloc_known_already(std::int64_t /*location*/) {}
  virtual void object_loaded_twice(std::uint32_t /*id*/) {}
  virtual void function_number_negative(std::int32_t /*number*/) {}
  virtual void function_number_unknown(std::int32_t /*number*/) {}
  virtual void reserved_process_missing(std::uint32_t /*pid*/) {}
  virtual void symbol_known_already() {}
  virtual void symbol_unknown() {}
  virtual void symbol_without_category(std::string_view /*name*/) {}
  virtual void query_operation_unknown(std::uint32_t /*operation*/) {}
  virtual void query_not_open(std::uint32_t /*qid*/) {}
  virtual void query_known_already(std::uint32_t /*qid*/, std::string_view /*refused*/,
                                   std::string_view /*kept*/) {}

  // Output files and the run.
  virtual void table_opened(const std::string& /*path*/, bool /*created*/) {}
  virtual void cannot_write(const std::string& /*path*/) {}
  virtual void trace_begins(const std::string& /*header_name*/) {}
  virtual void trace_failed() {}
  virtual void version_not_supported(int /*version*/) {}

 private:
  const int debug_level_;
};

}  // namespace kiv
