#include "support/trace_builder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace kiv::test {
namespace {

// Every record type as the traced process writes it: fields in record order, each with the letter
// of its print format. Kept apart from the decoder on purpose.
struct record_type {
  char tag;
  const char* name;
  const char* description;
  const char* fields;
};
constexpr record_type record_types[] = {
    {'H', "hashloc", "C/C++ source location", "location:p source_line:s"},
    {'a', "malloc_wf", "Malloc with free",
     "id:u color:d addr:p addr_realloc:p size:u tot_size:u location:p"},
    {'n', "malloc_nf", "Malloc no free", "id:u color:d addr:p size:u tot_size:u location:p"},
    {'f', "free", "Free memory", "id:u color:d addr:p location:p"},
    {'r', "free_realloc", "Realloc memory",
     "id:u color:d addr:p addr_free:p size:u tot_size:u location:p"},
    {'S', "sbrk", "Request heap memory", "addr:p size:u"},
    {'G', "sbrk_gap", "Gaps between sbrk", "l_sbrk:p c_sbrk:p"},
    {'R', "reserve_id", "Reserve Memory ID",
     "id:u default_size:u location:p nr_colors:d reserve_type:s"},
    {'c', "reserve_id_colors", "Color description", "color:d colorname:s"},
    {'F', "free_id", "Free malloc ID", "id:d location:p tot_size_wf:d tot_size_nf:d"},
    {'Z', "reset_id", "Reset malloc ID", "id:d location:p tot_size_wf:d tot_size_nf:d"},
    {'I', "flow_in", "3GL function entry", "parent_id:u parent_funnr:d child_id:u child_funnr:d"},
    {'O', "flow_out", "3GL function exit", ""},
    {'s', "schedule", "Process schedule", "curr_pid:d new_pid:d"},
    {'P', "process_start", "Start 3GL process", "pid:d parent:d session_name:s"},
    {'X', "process_end", "End 3GL process", "pid:d"},
    {'B', "process_special_load", "Process Special Context functions", "pid:u funnr:d funcname:s"},
    {'L', "object_load", "Load 3GL object", "id_of_obj:u"},
    {'p', "object_link", "Link 3GL object to process", "pid:d id_of_obj:u"},
    {'l', "object_function_load", "3GL function name", "id_of_obj:u funnr:d funcname:s"},
    {'b', "object_global_load", "Hosk function name", "id_of_obj:u funnr:d funcname:s"},
    {'i', "hosk_flow_in", "Hosk call flow in", "id_of_obj:u fun3glnr:d funnr:d sym:p args:s"},
    {'o', "hosk_flow_out", "Hosk call flow out", "id_of_obj:u fun3glnr:d funnr:d args:s"},
    {'Q', "query_in", "SQL Operation entry", "qid:d type:d query:s"},
    {'q', "query_out", "SQL Operation exit", "qid:d linked_qid:d"},
    {'C', "marker", "User marker", "text:s"},
    {'T', "timestamp", "Time stamp", "tv_secs:d tv_nsecs:d"},
    {'M', "mallinfo", "Native Malloc Information", "arena:u used:u freed:u"},
    {'y', "symbol_alloc", "3GL Symbol Storage Allocation", "sym:p flags:u size:u name:s"},
    {'D', "symbol_dims", "3GL Symbol Dimenstions", "sym:p nrdims:u dim0:u dim1:u dim2:u dim3:u"},
    {'Y', "symbol_dd_name", "3GL Symbol Data Dictionary Type Info", "sym:p dd_name:s"},
    {'d', "symbol_new_sym", "3GL New Symbol", "sym:p symnr:d sym_type:d"},
};

std::string xml_value(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

}  // namespace

std::string_view all_tags() {
  static const std::string tags = [] {
    std::string all;
    for (const record_type& type : record_types) all += type.tag;
    return all;
  }();
  return tags;
}

trace::trace()
    : elements_{{place::front, "version", {{"type", "1"}}},
                {place::front, "filetype", {{"type", "bin"}}},
                {place::front, "endianess", {{"values", "l"}}},
                {place::front, "pid", {{"value", "1"}}},
                {place::front, "runid", {{"value", "RUN"}}},
                {place::al_alloc, "m_entry", {{"size", "16"}}},
                {place::al_alloc, "mem_block", {{"size", "32"}}},
                {place::al_alloc, "m_group", {{"size", "64"}}},
                {place::back, "time_start", {{"secs", "0"}, {"nsecs", "0"}}},
                {place::back, "time_end", {{"secs", "0"}, {"nsecs", "0"}}},
                {place::back, "progname", {{"name", "app"}}},
                {place::back, "user", {{"value", "dev"}}},
                {place::back, "lom", {{"value", "linux"}}},
                {place::back, "pacc", {{"value", "dev"}}},
                {place::back, "hostname", {{"value", "localhost"}}}} {
  for (const record_type& type : record_types) {
    layout& made = layout_of(type.tag);
    made.name = std::string("kiv_e_") + type.name;
    made.description = type.description;
    std::string_view rest = type.fields;
    while (!rest.empty()) {
      const std::size_t colon = rest.find(':');
      const char kind = rest[colon + 1];
      made.fields.push_back({std::string(rest.substr(0, colon)), kind, kind == 's' ? 0 : 4});
      rest.remove_prefix(std::min(rest.size(), colon + 3));
    }
  }
}

trace::element& trace::element_of(std::string_view name) {
  for (element& known : elements_) {
    if (known.name == name) return known;
  }
  return elements_.emplace_back(element{place::front, std::string(name), {{"value", ""}}});
}

trace& trace::attr(std::string_view name, std::string_view value) {
  element_of(name).attributes[0].second = value;
  return *this;
}

trace& trace::without(std::string_view name) {
  std::erase_if(elements_, [&](const element& known) { return known.name == name; });
  return *this;
}

trace& trace::start(std::int64_t secs, std::int64_t nsecs) {
  element_of("time_start").attributes = {{"secs", std::to_string(secs)},
                                         {"nsecs", std::to_string(nsecs)}};
  return *this;
}

trace& trace::end(std::int64_t secs, std::int64_t nsecs) {
  element_of("time_end").attributes = {{"secs", std::to_string(secs)},
                                       {"nsecs", std::to_string(nsecs)}};
  return *this;
}

trace& trace::unclosed() {
  closed_ = false;
  return *this;
}

trace& trace::big_endian() {
  big_endian_ = true;
  return attr("endianess", "B");
}

trace& trace::addr_width(int bytes) {
  for (layout& type : layouts_) {
    for (field& one : type.fields) {
      if (one.kind == 'p') one.width = bytes;
    }
  }
  return *this;
}

trace& trace::width(char tag, std::string_view name, int bytes) {
  for (field& one : layout_of(tag).fields) {
    if (one.name == name) one.width = bytes;
  }
  return *this;
}

trace& trace::extra_field(char tag, int bytes) {
  layout_of(tag).fields.push_back({"extra", 'u', bytes});
  return *this;
}

trace& trace::without_entry(char tag) {
  layout_of(tag).declared = false;
  return *this;
}

trace& trace::bad_size(std::uint16_t bytes) {
  bad_size_ = bytes;
  return *this;
}

trace& trace::raw(std::string_view bytes) {
  files_.back().bytes += bytes;
  return *this;
}

trace& trace::next_file() {
  files_.emplace_back();
  records_in_file_ = 0;
  return *this;
}

trace& trace::split_after(std::size_t records) {
  split_after_ = records;
  return *this;
}

trace& trace::recorded_size(std::size_t file, std::string_view bytes) {
  files_[file].recorded_size = bytes;
  return *this;
}

trace& trace::base_name(std::string_view name) {
  base_name_ = name;
  return *this;
}

void trace::begin_record(char tag) {
  if (split_after_ != 0 && records_in_file_ == split_after_) next_file();
  std::string& bytes = files_.back().bytes;
  bytes += tag;
  bytes += "  ";
  current_ = &layout_of(tag);
  field_ = 0;
  frame_ = bytes.size();
}

trace& trace::end_record() {
  while (field_ < current_->fields.size()) {
    current_->fields[field_].kind == 's' ? put(std::string_view()) : put_number(0);
  }
  std::string& bytes = files_.back().bytes;
  std::string size;
  append_number(size, bad_size_.value_or(bytes.size() - frame_), 2);
  bytes.replace(frame_ - 2, 2, size);
  bad_size_.reset();
  ++records_;
  ++records_in_file_;
  return *this;
}

void trace::put(std::string_view value) {
  ++field_;
  files_.back().bytes.append(value) += '\0';
}

void trace::put_number(std::uint64_t value) {
  const int width = field_ < current_->fields.size() ? current_->fields[field_].width : 0;
  ++field_;
  append_number(files_.back().bytes, value, width);
}

void trace::append_number(std::string& to, std::uint64_t value, int width) const {
  for (int i = 0; i < width; ++i) {
    const int byte = big_endian_ ? width - 1 - i : i;
    to += byte < 8 ? static_cast<char>((value >> (8 * byte)) & 0xff) : '\0';
  }
}

std::string trace::header_name() const {
  std::string pid = "0";
  for (const element& known : elements_) {
    if (known.name == "pid") pid = known.attributes[0].second;
  }
  return base_name_ + "." + pid + ".kivhdr";
}

std::string trace::data_name(std::size_t file) const {
  std::string name = header_name();
  const std::string number = std::to_string(file);
  name.replace(name.rfind('.'), std::string::npos, number.size() < 3 ? ".000" : ".");
  if (number.size() < 3) name.resize(name.size() - number.size());
  return name + number + ".kivdat";
}

std::string trace::header(std::string_view recorded) const {
  std::string out = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<kiv>\n";
  const auto write_tag = [&](const char* indent, const element& e) {
    out += indent + ("<" + e.name);
    for (const auto& [name, value] : e.attributes)
      out += " " + name + "=\"" + xml_value(value) + "\"";
    out += " />\n";
  };
  const auto write_all = [&](const char* indent, place where) {
    for (const element& e : elements_) {
      if (e.where == where) write_tag(indent, e);
    }
  };

  write_all(" ", place::front);
  out += " <al_alloc>\n";
  write_all("  ", place::al_alloc);
  out += " </al_alloc>\n <entries>\n";
  for (const char tag : all_tags()) {
    const layout& type = layout_of(tag);
    if (!type.declared) continue;
    out += std::string("  <entry tag=\"") + tag + "\" name=\"" + type.name + "\" desc=\"" +
           type.description + "\" >\n";
    std::string format;
    for (const field& one : type.fields) {
      out += "   <elem name=\"" + one.name + "\" size=\"" + std::to_string(one.width) + "\" />\n";
      (format += format.empty() ? "%" : " %") += one.kind;
    }
    out += "   <format fmt=\"" + format + "\" />\n  </entry>\n";
  }
  out += " </entries>\n";
  for (std::size_t i = 0; i < files_.size(); ++i) {
    const data_file& file = files_[i];
    out += " <kivfile>\n";
    write_tag("  ", {{}, "file", {{"value", std::string(recorded) + "/" + data_name(i)}}});
    write_tag(
        "  ",
        {{}, "size", {{"value", file.recorded_size.value_or(std::to_string(file.bytes.size()))}}});
    out += " </kivfile>\n";
  }
  if (!closed_) return out;
  write_all(" ", place::back);
  return out += "</kiv>\n";
}

bool trace::write(const std::string& dir, std::string_view recorded) const {
  std::error_code error;
  std::filesystem::create_directories(dir, error);
  bool written = write_file(dir + "/" + header_name(), header(recorded.empty() ? dir : recorded));
  for (std::size_t i = 0; i < files_.size(); ++i) {
    written &= write_file(dir + "/" + data_name(i), files_[i].bytes);
  }
  return written;
}

bool write_file(const std::string& path, std::string_view bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  return file.good();
}

}  // namespace kiv::test
