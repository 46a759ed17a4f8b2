#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "trace/header_text.h"
#include "trace/record_encoder.h"

namespace kiv::test {

// Says a trace in the words of the domain and yields its header file and data files, sound ones and
// damaged ones.
//
// Every call returns the trace. Widths and byte order hold for the records that follow them; the
// header declares what holds at the end.
class trace {
 public:
  trace();

  // The run, as the header tells it.
  trace& attr(std::string_view element, std::string_view value);  // first attribute; new ones too
  trace& without(std::string_view element);                       // the header lacks that element
  trace& pid(std::int64_t value) { return attr("pid", std::to_string(value)); }
  trace& runid(std::string_view value) { return attr("runid", value); }
  trace& progname(std::string_view value) { return attr("progname", value); }
  trace& start(std::int64_t secs, std::int64_t nsecs = 0);
  trace& end(std::int64_t secs, std::int64_t nsecs = 0);
  trace& unclosed();  // the header of a process that still runs: it ends after the data files

  // How records are written.
  trace& big_endian();
  trace& addr_width(int bytes);                                    // addresses, locations, symbols
  trace& width(char tag, std::string_view field, int bytes);       // one field
  trace& extra_field(char tag, int bytes = 4);                     // one more, at the end
  trace& without_entry(char tag);                                  // not declared in the header
  trace& bad_size(std::uint16_t bytes);                            // the next record's size field
  trace& raw(std::string_view bytes);                              // no frame, as it stands
  trace& next_file();                                              // what follows: another file
  trace& split_after(std::size_t records);                         // a new file every so many
  trace& recorded_size(std::size_t file, std::string_view bytes);  // what the header claims
  trace& base_name(std::string_view name);                         // in place of "kiv"

  // A record of any tag: the values take its fields in order, fields left over become 0 or empty.
  template <class... Values>
  trace& record(char tag, const Values&... values) {
    begin_record(tag);
    (put(values), ...);
    return end_record();
  }

  using u32 = std::uint32_t;
  using i32 = std::int32_t;
  using i64 = std::int64_t;
  using text = std::string_view;

  // Memory and heap.
  trace& malloc_wf(u32 id, u32 color, i64 addr, u32 size, u32 tot_size, i64 location = 0,
                   i64 addr_realloc = 0) {
    return record('a', id, color, addr, addr_realloc, size, tot_size, location);
  }
  trace& malloc_nf(u32 id, u32 color, i64 addr, u32 size, u32 tot_size, i64 location = 0) {
    return record('n', id, color, addr, size, tot_size, location);
  }
  trace& free(u32 id, u32 color, i64 addr, i64 location = 0) {
    return record('f', id, color, addr, location);
  }
  trace& realloc(u32 id, u32 color, i64 addr, u32 size, u32 tot_size, i64 location = 0,
                 i64 addr_free = 0) {
    return record('r', id, color, addr, addr_free, size, tot_size, location);
  }
  trace& sbrk(i64 addr, u32 size) { return record('S', addr, size); }
  trace& gap(i64 l_sbrk, i64 c_sbrk) { return record('G', l_sbrk, c_sbrk); }
  trace& mallinfo(u32 arena, u32 used, u32 freed) { return record('M', arena, used, freed); }

  // Allocation ids. A free or reset tells the total sizes that the traced process held.
  trace& reserve(u32 id, text reserve_type, u32 nr_colors = 1, i64 location = 0,
                 u32 default_size = 0) {
    return record('R', id, default_size, location, nr_colors, reserve_type);
  }
  trace& color(u32 color, text name) { return record('c', color, name); }
  trace& free_id(u32 id, u32 tot_size_wf = 0, u32 tot_size_nf = 0, i64 location = 0) {
    return record('F', id, location, tot_size_wf, tot_size_nf);
  }
  trace& reset_id(u32 id, u32 tot_size_wf = 0, u32 tot_size_nf = 0, i64 location = 0) {
    return record('Z', id, location, tot_size_wf, tot_size_nf);
  }

  // Processes and their code.
  trace& proc(u32 pid, text session_name, u32 parent = 0) {
    return record('P', pid, parent, session_name);
  }
  trace& proc_end(u32 pid) { return record('X', pid); }
  trace& schedule(u32 curr_pid, u32 new_pid) { return record('s', curr_pid, new_pid); }
  trace& special(u32 pid, i32 funnr, text name) { return record('B', pid, funnr, name); }
  trace& object(u32 id_of_obj) { return record('L', id_of_obj); }
  trace& link(u32 pid, u32 id_of_obj) { return record('p', pid, id_of_obj); }
  trace& function(u32 id_of_obj, i32 funnr, text name) {
    return record('l', id_of_obj, funnr, name);
  }
  trace& global(u32 id_of_obj, i32 funnr, text name) { return record('b', id_of_obj, funnr, name); }
  trace& flow_in(u32 parent_id, i32 parent_funnr, u32 child_id, i32 child_funnr) {
    return record('I', parent_id, parent_funnr, child_id, child_funnr);
  }
  trace& flow_out() { return record('O'); }
  trace& hosk_in(u32 id_of_obj, u32 fun3glnr, i32 funnr, i64 sym, text args) {
    return record('i', id_of_obj, fun3glnr, funnr, sym, args);
  }
  trace& hosk_out(u32 id_of_obj, u32 fun3glnr, i32 funnr, text args) {
    return record('o', id_of_obj, fun3glnr, funnr, args);
  }
  trace& symbol(i64 sym, i32 symnr, i32 sym_type) { return record('d', sym, symnr, sym_type); }
  trace& symbol_alloc(i64 sym, u32 flags, u32 size, text name) {
    return record('y', sym, flags, size, name);
  }
  trace& symbol_dims(i64 sym, u32 nrdims, std::array<u32, 4> dims) {
    return record('D', sym, nrdims, dims[0], dims[1], dims[2], dims[3]);
  }
  trace& symbol_dd_name(i64 sym, text dd_name) { return record('Y', sym, dd_name); }

  // Time, places, queries, markers.
  trace& time(u32 secs, u32 nsecs = 0) { return record('T', secs, nsecs); }
  trace& hashloc(i64 location, text source_line) { return record('H', location, source_line); }
  trace& marker(text words) { return record('C', words); }
  trace& query_in(u32 qid, char type, text query = "") { return record('Q', qid, type, query); }
  trace& query_out(u32 qid, u32 linked_qid = 0) { return record('q', qid, linked_qid); }

  // What came out. `recorded` is the directory of the data files as the header tells it.
  std::string header(std::string_view recorded) const;
  std::string& data(std::size_t file = 0) { return files_[file].records.bytes(); }
  std::size_t file_count() const { return files_.size(); }
  std::size_t record_count() const { return records_; }
  std::string header_name() const;
  std::string data_name(std::size_t file) const;
  // Makes the directory and writes the files into it; `recorded` is the directory itself when
  // empty. False: they could not be written.
  [[nodiscard]] bool write(const std::string& dir, std::string_view recorded = {}) const;

 private:
  using element = header_text::element;
  struct data_file {
    record_bytes records;
    std::optional<std::string> recorded_size;  // else what the file has
  };

  std::vector<element>& elements_with(std::string_view name);
  element& element_of(std::string_view name);
  record_definition& definition_of(char tag);
  void begin_record(char tag);
  trace& end_record();
  template <std::integral T>
  void put(T value) {
    put_number(static_cast<std::uint64_t>(value));
  }
  void put(std::string_view value);
  void put_number(std::uint64_t value);
  record_bytes& records() { return files_.back().records; }

  header_text header_;
  std::string undeclared_;  // tags
  std::vector<data_file> files_;
  std::string base_name_ = "kiv";
  std::size_t records_ = 0, split_after_ = 0, records_in_file_ = 0;
  bool little_endian_ = true;

  const record_definition* current_ = nullptr;  // of the record being written
  std::size_t field_ = 0;
  std::optional<std::uint16_t> bad_size_;
};

// Writes the bytes as the file's whole content; false when the file cannot be written.
[[nodiscard]] bool write_file(const std::string& path, std::string_view bytes);

// The tags of all record types, in the order in which a header declares them.
std::string_view all_tags();

}  // namespace kiv::test
