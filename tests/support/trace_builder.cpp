#include "support/trace_builder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "trace/record_types.h"

namespace kiv::test {
namespace {

trace_identity usual_identity() {
  trace_identity made;
  made.run_id = "RUN";
  made.pid = 1;
  made.program = "app";
  made.user = made.account = "dev";
  made.environment = "linux";
  made.host = "localhost";
  made.m_entry_size = 16;
  made.mem_block_size = 32;
  made.m_group_size = 64;
  return made;
}

}  // namespace

std::string_view all_tags() {
  static const std::string tags = [] {
    std::string all;
    for (const record_type& type : record_types) all += static_cast<char>(type.type);
    return all;
  }();
  return tags;
}

trace::trace() : header_(make_header_text(usual_identity(), true, 4)) {
  header_.closed = true;
  next_file();
}

std::vector<trace::element>& trace::elements_with(std::string_view name) {
  for (auto* elements : {&header_.allocator, &header_.end}) {
    if (std::ranges::find(*elements, name, &element::name) != elements->end()) return *elements;
  }
  return header_.identity;
}

trace::element& trace::element_of(std::string_view name) {
  std::vector<element>& elements = elements_with(name);
  const auto known = std::ranges::find(elements, name, &element::name);
  if (known != elements.end()) return *known;
  return elements.emplace_back(element{std::string(name), {{"value", ""}}});
}

record_definition& trace::definition_of(char tag) {
  return *std::ranges::find(header_.entries, tag, &record_definition::tag);
}

trace& trace::attr(std::string_view name, std::string_view value) {
  element_of(name).attributes[0].second = value;
  return *this;
}

trace& trace::without(std::string_view name) {
  std::erase_if(elements_with(name), [&](const element& known) { return known.name == name; });
  return *this;
}

trace& trace::start(std::int64_t secs, std::int64_t nsecs) {
  element_of("time_start").attributes = {{"secs", std::to_string(secs)},
                                         {"nsecs", std::to_string(nsecs)}};
  return *this;
}

trace& trace::end(std::int64_t secs, std::int64_t nsecs) {
  set_end_time(header_, {secs, nsecs});
  return *this;
}

trace& trace::unclosed() {
  header_.closed = false;
  return *this;
}

trace& trace::big_endian() {
  little_endian_ = false;
  for (data_file& file : files_) file.records.use_big_endian();
  return attr("endianess", "B");
}

trace& trace::addr_width(int bytes) {
  for (record_definition& type : header_.entries) {
    for (record_definition::field& one : type.fields) {
      if (one.kind == 'p') one.width = bytes;
    }
  }
  return *this;
}

trace& trace::width(char tag, std::string_view name, int bytes) {
  for (record_definition::field& one : definition_of(tag).fields) {
    if (one.name == name) one.width = bytes;
  }
  return *this;
}

trace& trace::extra_field(char tag, int bytes) {
  definition_of(tag).fields.push_back({"extra", 'u', bytes});
  return *this;
}

trace& trace::without_entry(char tag) {
  undeclared_ += tag;
  return *this;
}

trace& trace::bad_size(std::uint16_t bytes) {
  bad_size_ = bytes;
  return *this;
}

trace& trace::raw(std::string_view bytes) {
  records().bytes() += bytes;
  return *this;
}

trace& trace::next_file() {
  files_.push_back({record_bytes(little_endian_), {}});
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
  records().begin(tag);
  current_ = &definition_of(tag);
  field_ = 0;
}

trace& trace::end_record() {
  while (field_ < current_->fields.size()) {
    current_->fields[field_].kind == 's' ? put(std::string_view()) : put_number(0);
  }
  if (bad_size_) {
    records().end(*bad_size_);
  } else {
    records().end();
  }
  bad_size_.reset();
  ++records_;
  ++records_in_file_;
  return *this;
}

void trace::put(std::string_view value) {
  ++field_;
  records().put_text(value);
}

void trace::put_number(std::uint64_t value) {
  const int width = field_ < current_->fields.size() ? current_->fields[field_].width : 0;
  ++field_;
  records().put_number(value, static_cast<std::uint32_t>(std::max(width, 0)));
}

std::string trace::header_name() const {
  const auto pid = std::ranges::find(header_.identity, "pid", &element::name);
  return header_file_name(base_name_,
                          pid == header_.identity.end() ? "0" : pid->attributes[0].second);
}

std::string trace::data_name(std::size_t file) const {
  std::string name = header_name();
  name.erase(name.rfind('.'));
  const std::size_t dot = name.rfind('.');
  return data_file_name(name.substr(0, dot), name.substr(dot + 1), file);
}

std::string trace::header(std::string_view recorded) const {
  header_text told = header_;
  std::erase_if(told.entries, [&](const record_definition& type) {
    return undeclared_.find(type.tag) != std::string::npos;
  });
  for (std::size_t i = 0; i < files_.size(); ++i) {
    const data_file& file = files_[i];
    told.files.push_back(
        {std::string(recorded) + "/" + data_name(i),
         file.recorded_size.value_or(std::to_string(file.records.bytes().size()))});
  }
  return told.document();
}

bool trace::write(const std::string& dir, std::string_view recorded) const {
  std::error_code error;
  std::filesystem::create_directories(dir, error);
  bool written = write_file(dir + "/" + header_name(), header(recorded.empty() ? dir : recorded));
  for (std::size_t i = 0; i < files_.size(); ++i) {
    written &= write_file(dir + "/" + data_name(i), files_[i].records.bytes());
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
