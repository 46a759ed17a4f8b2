#include "replay/event_loop.h"

#include <algorithm>
#include <span>

#include "replay/kiv_hashloc.h"
#include "replay/kiv_query.h"
#include "replay/observer.h"

namespace kiv {

event_loop::event_loop(kiv_reader& reader)
    : reader_(reader),
      cursor_(reader.files().cursor()),
      diagnostics_(reader.faults()),
      counters_(reader.run().counters),
      repeats_calls_(!diagnostics_.lists_records() && !reader.observer().follows_calls() &&
                     std::ranges::all_of(std::span(reader.layout().widths(kiv_e_flow_in), 4),
                                         [](std::uint32_t width) { return width == 4; })) {}

event_loop::~event_loop() = default;

void event_loop::run() {
  reader_.observer().trace_began();
  while (!reader_.files().eof()) {
    if (repeats_calls_) repeat_calls();
    if (cursor_.needs_bytes()) continue;
    const std::uint32_t event_number = reader_.count_event();
    // What the file does not wholly hold was cut off; the next file starts with a record again.
    if (!cursor_.record_start_fits()) {
      diagnostics_.out_of_sync(event_number);
      cursor_.go_to_end();
      continue;
    }
    const signed char tag = cursor_.read_tag();
    const std::uint32_t size = cursor_.read_size();
    const kiv_type type = to_kiv_type(tag);
    const bool listed = diagnostics_.lists_records();
    if (type == kiv_e_invalid) {
      if (listed) diagnostics_.record_started(static_cast<char>(tag), size, event_number);
      diagnostics_.illegal_event(event_number, cursor_.position());
      return;
    }
    if (!cursor_.payload_fits()) {
      diagnostics_.out_of_sync(event_number);
      cursor_.go_to_end();
      continue;
    }
    if (listed) diagnostics_.record_started(static_cast<char>(tag), size, event_number);
    handle(type);
    if (!cursor_.at_record_end()) {
      diagnostics_.out_of_sync(event_number);
      cursor_.go_to_record_end();
    }
  }
  reader_.observer().trace_ended();
}

void event_loop::handle(kiv_type type) {
  switch (type) {
    case kiv_e_malloc_wf:
      return on_malloc_wf();
    case kiv_e_malloc_nf:
      return on_malloc_nf();
    case kiv_e_free:
      return on_free();
    case kiv_e_free_realloc:
      return on_free_realloc();
    case kiv_e_sbrk:
      return on_sbrk();
    case kiv_e_sbrk_gap:
      return on_sbrk_gap();
    case kiv_e_mallinfo:
      return on_mallinfo();
    case kiv_e_timestamp:
      return on_timestamp();
    case kiv_e_marker:
      return on_marker();
    case kiv_e_reserve_id:
      return on_reserve_id();
    case kiv_e_reserve_id_colors:
      return on_reserve_id_colors();
    case kiv_e_free_id:
      return on_free_id();
    case kiv_e_reset_id:
      return on_reset_id();
    case kiv_e_hashloc:
      return on_hashloc();
    case kiv_e_object_load:
      return on_object_load();
    case kiv_e_object_function_load:
      return on_object_function_load();
    case kiv_e_object_global_load:
      return on_object_global_load();
    case kiv_e_object_link:
      return on_object_link();
    case kiv_e_process_start:
      return on_process_start();
    case kiv_e_process_end:
      return on_process_end();
    case kiv_e_process_special_load:
      return on_process_special_load();
    case kiv_e_schedule:
      return on_schedule();
    case kiv_e_flow_in:
      return on_flow_in();
    case kiv_e_flow_out:
      return on_flow_out();
    case kiv_e_hosk_flow_in:
      return on_hosk_flow_in();
    case kiv_e_hosk_flow_out:
      return on_hosk_flow_out();
    case kiv_e_symbol_new_sym:
      return on_symbol_new();
    case kiv_e_symbol_dims:
      return on_symbol_dims();
    case kiv_e_symbol_dd_name:
      return on_symbol_dd_name();
    case kiv_e_symbol_alloc:
      return on_symbol_alloc();
    case kiv_e_query_in:
      return on_query_in();
    case kiv_e_query_out:
      return on_query_out();
    case kiv_e_invalid:
      return;
  }
}

void event_loop::count_record() {
  const std::uint32_t count = ++counters_.record_count;
  if (count % 1000 == 0) reader_.observer().thousandth_record(count);
}

std::string_view event_loop::source_line(std::int64_t location) const {
  return reader_.hash_locations().get_hashloc(location);
}

}  // namespace kiv
