#pragma once

#include <array>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include "events/kiv_type.h"
#include "output/decimal.h"
#include "reader/kiv_reader.h"
#include "settings.h"

namespace kiv {

class KivFreeOrReset;
class KivQuery;
class KivQueryOut;

// The replay of one trace: reads every record in order, has it decoded and listed, applies it to
// the books and writes the rows that it brings. Lives for one replay.
class event_loop {
 public:
  explicit event_loop(kiv_reader& reader);
  ~event_loop();

  // Reads on until the data files end or a record of unknown type makes the rest unreadable.
  void run();

  // Decodes one record whose tag and size are read, and applies it.
  void handle(kiv_type type);

 private:
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

  // Decodes the record and lists it at debug level 2.
  template <class Event>
  static void decode(Event& event) {
    event.setelems();
    if (debug_level > 1) event.traceevent(std::cerr);
  }
  // A marker's text, put together in a string that keeps its room; valid until the next one.
  template <class... Pieces>
  const std::string& marker_text(const Pieces&... pieces) {
    marker_text_.clear();
    (append_to_marker(pieces), ...);
    return marker_text_;
  }
  void append_to_marker(std::string_view piece) { marker_text_ += piece; }
  void append_to_marker(std::uint32_t number) {
    std::array<char, number_room> digits;
    marker_text_.append(digits.data(), put_decimal(digits.data(), number));
  }
  template <class Event>
  void write_sbrk_row(const Event& event);
  void count_record();
  void free_or_reset(const KivFreeOrReset& event, bool reset);
  void complete_pending_query(const KivQueryOut& event);

  void list_record_start(signed char tag, std::uint32_t size) const;
  void report_out_of_sync() const;
  void report_illegal_event() const;

  kiv_reader& reader_;
  record_cursor& cursor_;
  std::string marker_text_;
  std::uint32_t event_number_ = 0;  // records read, decoded or not

  // The statement that the last query-in of type 'p' brought. The first query-out after it gives
  // it its number and hands it to the book of statements.
  bool has_pending_query_ = false;
  std::unique_ptr<KivQuery> new_query_;  // until handed over
  std::uint32_t pending_qid_ = 0;
};

}  // namespace kiv
