#include "kiv/stream_diagnostics.h"

namespace kiv {

// Header files.

void stream_diagnostics::header_not_opened(const std::string& path) {
  err_ << "header file " << path << " cannot be opened\n";
}

void stream_diagnostics::header_not_well_formed(const char* error, std::uint64_t line) {
  err_ << error << " at line " << line << '\n';
}

void stream_diagnostics::header_without_root(const std::string& path) {
  err_ << "no kiv element in header file " << path << '\n';
}

void stream_diagnostics::element_pushed(const char* class_name) {
  err_ << "\t\tpush " << class_name << '\n';
}

void stream_diagnostics::element_popped(const char* class_name) {
  err_ << "\t\tpop  " << class_name << '\n';
}

void stream_diagnostics::xml_started(const char* tag, std::string_view top_element) {
  err_ << "startElement:  '" << tag << "' from '" << top_element << "'\n";
}

void stream_diagnostics::xml_ended(const char* tag, std::string_view top_element) {
  err_ << "endElement:  '" << tag << "' from '" << top_element << "'\n";
}

void stream_diagnostics::xml_text(std::string_view text) { err_ << "userdata: " << text << '\n'; }

void stream_diagnostics::header_tag_started(const char* tag) { err_ << ">tag: " << tag << '\n'; }

void stream_diagnostics::header_tag_ended(const char* tag) { err_ << "<tag: " << tag << '\n'; }

void stream_diagnostics::unknown_tag_in_header(const char* tag) {
  err_ << "kiv_hdr::startElement >>>> Unknown tag '" << tag << "' \n";
}

void stream_diagnostics::unknown_tag_in_entry(const char* tag) {
  err_ << "entry::startElemen: >>>>> Unknown tag '" << tag << "' \n";
}

void stream_diagnostics::unknown_tag_in_kivfile(const char* tag) {
  err_ << "kivfile::set_attrs >>>>>>>>>> Unknown tag '" << tag << "' \n";
}

void stream_diagnostics::record_defined(int tag, const std::string& name,
                                        const std::string& description, const std::string& format) {
  err_ << "tag: " << tag << " entry_name: " << name << '\n'
       << " desc: " << description << " format: " << format << '\n';
}

void stream_diagnostics::field_defined(const std::string& name, int size) {
  out_ << "  name: " << name << " size: " << size << '\n';
}

// Data files and records.

void stream_diagnostics::file_opening(const std::string& path) {
  err_ << "Opening file: \"" + path + "\"\n";
}

void stream_diagnostics::file_not_opened(const std::string& path) {
  err_ << " error opening " + path + "'\n";
}

void stream_diagnostics::file_closing(const std::string& path) {
  err_ << " closing file " + path + "\n";
}

void stream_diagnostics::replay_without_file(const std::string& path) {
  err_ << "cannot open file " + path + "\n";
}

void stream_diagnostics::out_of_sync(std::uint32_t event_number) {
  out_ << "OUT OF SYNC!!! record: " << event_number << "Corrected...\n";
}

void stream_diagnostics::illegal_event(std::uint32_t event_number, std::uint64_t file_offset) {
  out_ << "Illegal event detected. record nr: " << event_number << '\n'
       << "File offset: " << file_offset << '\n';
}

// Progress of the replay.

void stream_diagnostics::id_reserved(std::uint32_t id, std::string_view reserve_type) {
  err_ << fmt::format("Reserve Id {} {}\n", id, reserve_type);
}

void stream_diagnostics::object_loaded(std::uint32_t id, std::string_view name) {
  err_ << fmt::format("---------------------------------\n Load object: {} {}\n", id, name);
}

void stream_diagnostics::process_ended(std::string_view session_name, std::uint32_t pid) {
  err_ << fmt::format("End process: End: {} {}\n", session_name, pid);
}

void stream_diagnostics::query_entered(char operation) {
  err_ << fmt::format("QueryIn: {}\n", operation);
}

void stream_diagnostics::query_left(char operation) {
  err_ << fmt::format("QueryOu: {}\n", operation);
}

// Faults of memory records.

void stream_diagnostics::realloc_source_missing(std::int64_t addr) {
  out_ << fmt::format("Error in MALLOC_WF cannot find addr_realloed {:x}\n",
                      static_cast<std::uint64_t>(addr));
}

void stream_diagnostics::freed_block_missing(std::int64_t addr) {
  out_ << fmt::format("Error in FREE: illegal address {:x}\n", static_cast<std::uint64_t>(addr));
}

void stream_diagnostics::resized_block_missing(std::int64_t addr) {
  out_ << fmt::format("Error in FREE REALLOC: illegal address {:x}\n",
                      static_cast<std::uint64_t>(addr));
}

void stream_diagnostics::address_live_already(std::int64_t addr, std::uint64_t record,
                                              std::uint32_t size, std::string_view source_line) {
  err_ << fmt::format(" addr: {} already in DB!!! rec: {} size: {} hashlock: {}\n", addr, record,
                      size, source_line);
}

void stream_diagnostics::id_reserved_twice(std::uint32_t id) {
  out_ << "Error mal_id " << id << " already found! \n";
}

void stream_diagnostics::wf_total_differs(std::uint32_t id, std::uint64_t recorded,
                                          std::uint64_t actual) {
  out_ << fmt::format("free_mem inconsistency WF in malid {} tot_size_wf {} vs actual {}\n", id,
                      recorded, actual);
}

void stream_diagnostics::nf_total_differs(std::uint32_t id, std::uint64_t recorded,
                                          std::uint64_t actual) {
  out_ << fmt::format("free_mem inconsistency NF in malid {} tot_size_nf {} vs actual {}\n", id,
                      recorded, actual);
}

void stream_diagnostics::differing_id_freed() { out_ << "FREE ID \n"; }

void stream_diagnostics::differing_id_reset() { out_ << "RESET ID \n"; }

void stream_diagnostics::id_wf_totals(std::uint32_t id, std::string_view reserve_type,
                                      std::uint64_t size, std::uint64_t tot_size) {
  out_ << "totals for id " << id << " " << reserve_type << '\n'
       << " size_wf     " << size << '\n'
       << " size_wf_tot " << tot_size << '\n';
}

void stream_diagnostics::id_nf_totals(std::uint64_t size, std::uint64_t tot_size) {
  out_ << " size_nf     " << size << '\n' << " size_nf_tot " << tot_size << '\n';
}

void stream_diagnostics::color_totals(std::uint32_t color, std::uint64_t tot_size,
                                      std::uint64_t size) {
  out_ << " c> " << color << " tot_size " << tot_size << " size     " << size << '\n';
}

void stream_diagnostics::blocks_given_back(std::uint64_t size, std::uint64_t tot_size) {
  out_ << " >clear_all_mem()\n"
       << " >size     " << size << '\n'
       << " >tot_size " << tot_size << '\n';
}

void stream_diagnostics::blocks_of_color(std::uint32_t color, std::uint64_t tot_size,
                                         std::uint64_t size) {
  out_ << " >> " << color << " tot_size " << tot_size << " size     " << size << '\n';
}

// Faults of records about code, symbols and SQL operations.

void stream_diagnostics::hashloc_known_already(std::int64_t location) {
  out_ << "Error hashloc " << location << " already found! \n";
}

void stream_diagnostics::object_loaded_twice(std::uint32_t id) {
  out_ << "Error oic_id " << id << " already found!\n";
}

void stream_diagnostics::function_number_negative(std::int32_t number) {
  err_ << fmt::format("ERROR find_function funnr <= 0 {}\n", number);
}

void stream_diagnostics::function_number_unknown(std::int32_t number) {
  err_ << fmt::format("ERROR find_function funnr {} not found\n", number);
}

void stream_diagnostics::reserved_process_missing(std::uint32_t pid) {
  out_ << "cannot happen: process id " << pid << " is not on KivProcess_db \n";
}

void stream_diagnostics::symbol_known_already() {
  err_ << "cannot happen KivProcess::symbol_new\n";
}

void stream_diagnostics::symbol_unknown() { err_ << "can't find sym\n"; }

void stream_diagnostics::symbol_without_category(std::string_view name) {
  err_ << fmt::format("sym with no category\"{}\"\n", name);
}

void stream_diagnostics::query_operation_unknown(std::uint32_t operation) {
  out_ << "QueryIn: unknown type '" << operation << "'\n";
}

void stream_diagnostics::query_not_open(std::uint32_t qid) {
  out_ << "QueryOut: no open query for qid " << qid << '\n';
}

void stream_diagnostics::query_known_already(std::uint32_t qid, std::string_view refused,
                                             std::string_view kept) {
  out_ << "Error in Query_db: " << qid << " already in db\n"
       << "Query: \n"
       << refused << "\n vs \n"
       << kept << '\n';
}

// Output files and the run.

void stream_diagnostics::table_opened(const std::string& path, bool created) {
  out_ << "csv_file: " << path << ' ' << (created ? 1 : 0) << '\n';
}

void stream_diagnostics::cannot_write(const std::string& path) {
  err_ << "cannot write " << path << '\n';
}

void stream_diagnostics::trace_begins(const std::string& header_name) {
  out_ << "Processing: " << header_name << std::endl;
}

void stream_diagnostics::trace_failed() { out_ << ">>Processing failed...\n"; }

void stream_diagnostics::version_not_supported(int version) {
  out_ << "header version \" " << version << " not supported \n";
}

}  // namespace kiv
