#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "trace/kiv_type.h"

namespace kiv {

// A record type as headers announce it.
struct record_type {
  kiv_type type;
  std::string_view name, description;
  // The fields in the record's order, each with the letter of its print format: 'u' and 'd' numbers
  // of 32 bits, 'p' addresses, locations and symbols, 's' a text, which comes last.
  std::string_view fields;
};

// Every record type, in the order in which headers announce them. The structs that the decoder
// fills hold the same fields in the same order.
inline constexpr std::array<record_type, 32> record_types{{
    {kiv_e_hashloc, "kiv_e_hashloc", "C/C++ source location", "location:p source_line:s"},
    {kiv_e_malloc_wf, "kiv_e_malloc_wf", "Malloc with free",
     "id:u color:d addr:p addr_realloc:p size:u tot_size:u location:p"},
    {kiv_e_malloc_nf, "kiv_e_malloc_nf", "Malloc no free",
     "id:u color:d addr:p size:u tot_size:u location:p"},
    {kiv_e_free, "kiv_e_free", "Free memory", "id:u color:d addr:p location:p"},
    {kiv_e_free_realloc, "kiv_e_free_realloc", "Realloc memory",
     "id:u color:d addr:p addr_free:p size:u tot_size:u location:p"},
    {kiv_e_sbrk, "kiv_e_sbrk", "Request heap memory", "addr:p size:u"},
    {kiv_e_sbrk_gap, "kiv_e_sbrk_gap", "Gaps between sbrk", "l_sbrk:p c_sbrk:p"},
    {kiv_e_reserve_id, "kiv_e_reserve_id", "Reserve Memory ID",
     "id:u default_size:u location:p nr_colors:d reserve_type:s"},
    {kiv_e_reserve_id_colors, "kiv_e_reserve_id_colors", "Color description",
     "color:d colorname:s"},
    {kiv_e_free_id, "kiv_e_free_id", "Free malloc ID",
     "id:d location:p tot_size_wf:d tot_size_nf:d"},
    {kiv_e_reset_id, "kiv_e_reset_id", "Reset malloc ID",
     "id:d location:p tot_size_wf:d tot_size_nf:d"},
    {kiv_e_flow_in, "kiv_e_flow_in", "3GL function entry",
     "parent_id:u parent_funnr:d child_id:u child_funnr:d"},
    {kiv_e_flow_out, "kiv_e_flow_out", "3GL function exit", ""},
    {kiv_e_schedule, "kiv_e_schedule", "Process schedule", "curr_pid:d new_pid:d"},
    {kiv_e_process_start, "kiv_e_process_start", "Start 3GL process",
     "pid:d parent:d session_name:s"},
    {kiv_e_process_end, "kiv_e_process_end", "End 3GL process", "pid:d"},
    {kiv_e_process_special_load, "kiv_e_process_special_load", "Process Special Context functions",
     "pid:u funnr:d funcname:s"},
    {kiv_e_object_load, "kiv_e_object_load", "Load 3GL object", "id_of_obj:u"},
    {kiv_e_object_link, "kiv_e_object_link", "Link 3GL object to process", "pid:d id_of_obj:u"},
    {kiv_e_object_function_load, "kiv_e_object_function_load", "3GL function name",
     "id_of_obj:u funnr:d funcname:s"},
    {kiv_e_object_global_load, "kiv_e_object_global_load", "Hosk function name",
     "id_of_obj:u funnr:d funcname:s"},
    {kiv_e_hosk_flow_in, "kiv_e_hosk_flow_in", "Hosk call flow in",
     "id_of_obj:u fun3glnr:d funnr:d sym:p args:s"},
    {kiv_e_hosk_flow_out, "kiv_e_hosk_flow_out", "Hosk call flow out",
     "id_of_obj:u fun3glnr:d funnr:d args:s"},
    {kiv_e_query_in, "kiv_e_query_in", "SQL Operation entry", "qid:d type:d query:s"},
    {kiv_e_query_out, "kiv_e_query_out", "SQL Operation exit", "qid:d linked_qid:d"},
    {kiv_e_marker, "kiv_e_marker", "User marker", "text:s"},
    {kiv_e_timestamp, "kiv_e_timestamp", "Time stamp", "tv_secs:d tv_nsecs:d"},
    {kiv_e_mallinfo, "kiv_e_mallinfo", "Native Malloc Information", "arena:u used:u freed:u"},
    {kiv_e_symbol_alloc, "kiv_e_symbol_alloc", "3GL Symbol Storage Allocation",
     "sym:p flags:u size:u name:s"},
    {kiv_e_symbol_dims, "kiv_e_symbol_dims", "3GL Symbol Dimenstions",
     "sym:p nrdims:u dim0:u dim1:u dim2:u dim3:u"},
    {kiv_e_symbol_dd_name, "kiv_e_symbol_dd_name", "3GL Symbol Data Dictionary Type Info",
     "sym:p dd_name:s"},
    {kiv_e_symbol_new_sym, "kiv_e_symbol_new_sym", "3GL New Symbol", "sym:p symnr:d sym_type:d"},
}};

constexpr const record_type& record_type_of(kiv_type type) {
  std::size_t i = 0;
  while (record_types.at(i).type != type) ++i;
  return record_types.at(i);
}

// Calls take(name, letter) for each of a type's `fields`.
template <class Take>
constexpr void for_each_field(std::string_view fields, Take take) {
  while (!fields.empty()) {
    const std::size_t colon = fields.find(':');
    take(fields.substr(0, colon), fields[colon + 1]);
    fields.remove_prefix(fields.size() > colon + 2 ? colon + 3 : fields.size());
  }
}

// A record type with the widths that a header declares for its fields.
struct record_definition {
  struct field {
    std::string name;
    char kind;      // the letter of its print format
    int width = 0;  // bytes; 0 for texts
  };
  char tag;
  std::string name, description;
  std::vector<field> fields;
};

// Every record type with 4 bytes for numbers and so many for addresses, locations and symbols.
std::vector<record_definition> record_definitions(int address_width);

}  // namespace kiv
