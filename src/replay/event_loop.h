#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "replay/kiv_reader.h"
#include "trace/decode.h"
#include "trace/diagnostics.h"

namespace kiv {

class KivMalid;
class KivQuery;

// Reads every record of a trace in order, has it decoded and listed, and applies it to the books.
// Lives for one replay.
class event_loop {
 public:
  explicit event_loop(kiv_reader& reader);
  ~event_loop();

  // Reads on until the data files end or a record of unknown type makes the rest unreadable.
  void run();

 private:
  // Decodes one record whose tag and size are read, and applies it.
  void handle(kiv_type type);

  // One function per record type.
  void on_malloc_wf();
  void on_malloc_nf();
  void on_free();
  void on_free_realloc();
  void on_sbrk();
  void on_sbrk_gap();
  void on_mallinfo();
  void on_timestamp();
  void on_marker();
  void on_reserve_id();
  void on_reserve_id_colors();
  void on_free_id();
  void on_reset_id();
  void on_hashloc();
  void on_object_load();
  void on_object_function_load();
  void on_object_global_load();
  void on_object_link();
  void on_process_start();
  void on_process_end();
  void on_process_special_load();
  void on_schedule();
  void on_flow_in();
  void on_flow_out();
  void on_hosk_flow_in();
  void on_hosk_flow_out();
  void on_symbol_new();
  void on_symbol_dims();
  void on_symbol_dd_name();
  void on_symbol_alloc();
  void on_query_in();
  void on_query_out();

  template <class Event>
  Event decoded() {
    return decode<Event>(cursor_, reader_.layout());
  }
  // The same, and the record is listed.
  template <class Event>
  Event read() {
    const Event event = decoded<Event>();
    if (diagnostics_.lists_records()) diagnostics_.listed(event);
    return event;
  }
  void count_record();
  // Applies the calls that come next, as far as they repeat earlier ones.
  void repeat_calls();
  // Applies a record of memory.
  template <class Event>
  void book();
  template <class Event>
  void free_or_reset(const Event& event, KivMalid& id);
  void complete_pending_query(const KivQueryOut& event);
  std::string_view source_line(std::int64_t location) const;

  kiv_reader& reader_;
  record_cursor& cursor_;
  diagnostics& diagnostics_;
  run_counters& counters_;
  // Whether calls may be applied many at once: nobody looks at each, and their records are made of
  // numbers of 4 bytes.
  const bool repeats_calls_;

  // The statement that the last query-in of operation 'p' brought. The first query-out after it
  // gives it its number and hands it to the book of statements.
  bool has_pending_query_ = false;
  std::unique_ptr<KivQuery> new_query_;  // until handed over
  std::uint32_t pending_qid_ = 0;
};

}  // namespace kiv
