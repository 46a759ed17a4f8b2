#pragma once

namespace kiv {

// The record types of a trace. The value is the character that opens the record in a data file.
enum kiv_type : int {
  kiv_e_invalid = 0,
  kiv_e_process_special_load = 'B',
  kiv_e_marker = 'C',
  kiv_e_symbol_dims = 'D',
  kiv_e_free_id = 'F',
  kiv_e_sbrk_gap = 'G',
  kiv_e_hashloc = 'H',
  kiv_e_flow_in = 'I',
  kiv_e_object_load = 'L',
  kiv_e_mallinfo = 'M',
  kiv_e_flow_out = 'O',
  kiv_e_process_start = 'P',
  kiv_e_query_in = 'Q',
  kiv_e_reserve_id = 'R',
  kiv_e_sbrk = 'S',
  kiv_e_timestamp = 'T',
  kiv_e_process_end = 'X',
  kiv_e_symbol_dd_name = 'Y',
  kiv_e_reset_id = 'Z',
  kiv_e_malloc_wf = 'a',
  kiv_e_object_global_load = 'b',
  kiv_e_reserve_id_colors = 'c',
  kiv_e_symbol_new_sym = 'd',
  kiv_e_free = 'f',
  kiv_e_hosk_flow_in = 'i',
  kiv_e_object_function_load = 'l',
  kiv_e_malloc_nf = 'n',
  kiv_e_hosk_flow_out = 'o',
  kiv_e_object_link = 'p',
  kiv_e_query_out = 'q',
  kiv_e_free_realloc = 'r',
  kiv_e_schedule = 's',
  kiv_e_symbol_alloc = 'y',
};

// The type that the tag byte names, kiv_e_invalid when it names none.
constexpr kiv_type to_kiv_type(signed char tag) {
  const auto type = static_cast<kiv_type>(tag);
  switch (type) {
    case kiv_e_process_special_load:
    case kiv_e_marker:
    case kiv_e_symbol_dims:
    case kiv_e_free_id:
    case kiv_e_sbrk_gap:
    case kiv_e_hashloc:
    case kiv_e_flow_in:
    case kiv_e_object_load:
    case kiv_e_mallinfo:
    case kiv_e_flow_out:
    case kiv_e_process_start:
    case kiv_e_query_in:
    case kiv_e_reserve_id:
    case kiv_e_sbrk:
    case kiv_e_timestamp:
    case kiv_e_process_end:
    case kiv_e_symbol_dd_name:
    case kiv_e_reset_id:
    case kiv_e_malloc_wf:
    case kiv_e_object_global_load:
    case kiv_e_reserve_id_colors:
    case kiv_e_symbol_new_sym:
    case kiv_e_free:
    case kiv_e_hosk_flow_in:
    case kiv_e_object_function_load:
    case kiv_e_malloc_nf:
    case kiv_e_hosk_flow_out:
    case kiv_e_object_link:
    case kiv_e_query_out:
    case kiv_e_free_realloc:
    case kiv_e_schedule:
    case kiv_e_symbol_alloc:
      return type;
    case kiv_e_invalid:
      break;
  }
  return kiv_e_invalid;
}

// Record types with seven-bit tags make array indexes.
inline constexpr int kiv_type_limit = 128;

}  // namespace kiv
