#include "trace/kiv_hdr.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "trace/diagnostics.h"
#include "trace/xml_parser.h"
#include "util/regular_file.h"

namespace kiv {

// Attributes count by position, whatever their names.
struct kiv_hdr::number_tag {
  std::string_view tag;
  int attr;
  int kiv_hdr::*member;
};

struct kiv_hdr::text_tag {
  std::string_view tag;
  std::string kiv_hdr::*member;
};

const kiv_hdr::number_tag kiv_hdr::number_tags[] = {
    {"version", 0, &kiv_hdr::version_},
    {"m_entry", 0, &kiv_hdr::m_entry_size_},
    {"mem_block", 0, &kiv_hdr::mem_block_size_},
    {"m_group", 0, &kiv_hdr::m_group_size_},
    {"pid", 0, &kiv_hdr::pid_},
    {"time_start", 0, &kiv_hdr::start_secs_},
    {"time_start", 1, &kiv_hdr::start_nsecs_},
    {"time_end", 0, &kiv_hdr::end_secs_},
    {"time_end", 1, &kiv_hdr::end_nsecs_},
};

const kiv_hdr::text_tag kiv_hdr::text_tags[] = {
    {"filetype", &kiv_hdr::filetype_}, {"progname", &kiv_hdr::progname_},
    {"runid", &kiv_hdr::runid_},       {"user", &kiv_hdr::user_},
    {"lom", &kiv_hdr::lom_},           {"pacc", &kiv_hdr::pacc_},
    {"hostname", &kiv_hdr::hostname_},
};

kiv_hdr::kiv_hdr(XmlParser& parser) : element("kiv_hdr", parser.elements()), parser_(parser) {}

// A header is one chunk for expat, unless it is so large that memory must be bounded.
int kiv_hdr::read_header(const std::string& path) {
  regular_file input(path.c_str());
  if (!input.is_open()) {
    faults().header_not_opened(path);
    return 3;
  }
  constexpr std::int64_t max_chunk = std::int64_t{64} << 20;
  std::vector<char> chunk(static_cast<std::size_t>(std::min(input.size(), max_chunk)));
  bool well_formed = true;
  for (std::int64_t left = input.size(); left > 0 && well_formed;) {
    const auto wanted = static_cast<std::size_t>(std::min(left, max_chunk));
    const std::size_t got = input.read(chunk.data(), wanted);
    well_formed = parser_.parse({chunk.data(), got});
    if (got < wanted) break;
    left -= static_cast<std::int64_t>(got);
  }
  return result_of(well_formed, path);
}

int kiv_hdr::read_document(std::string_view document, const std::string& path) {
  return result_of(parser_.parse(document), path);
}

int kiv_hdr::result_of(bool well_formed, const std::string& path) const {
  if (!well_formed) {
    faults().header_not_well_formed(parser_.error(), parser_.line());
    return 2;
  }
  if (!root_seen_) {
    faults().header_without_root(path);
    return 2;
  }
  if (!closed_) faults().header_not_closed(path);
  return 0;
}

void kiv_hdr::startElement(const char* tag, const char** attrs) {
  if (faults().tells_progress()) faults().header_tag_started(tag);
  if (read_value(tag, attrs)) return;

  const std::string_view which = tag;
  if (which == "entry") {
    const auto& added = entries_.emplace_back(std::make_unique<entry>(stack()));
    added->set_attrs(attrs);
    entry_of_tag_[static_cast<unsigned char>(added->tag())] = added.get();
  } else if (which == "kivfile") {
    files_.push_back(std::make_unique<kivfile>(stack()));
  } else if (which == "endianess") {
    if (const char* value = attr_value(attrs, 0)) little_endian_ = value[0] == 'l';
  } else if (which == "kiv") {
    root_seen_ = true;
  } else if (which != "al_alloc" && which != "entries" && faults().tells_progress()) {
    faults().unknown_tag_in_header(tag);
  }
}

// False when `tag` does not stand for a number or text of the header itself.
bool kiv_hdr::read_value(const char* tag, const char** attrs) {
  bool known = false;
  for (const number_tag& number : number_tags) {
    if (number.tag != tag) continue;
    read_attr(attrs, number.attr, this->*number.member);
    known = true;
  }
  for (const text_tag& text : text_tags) {
    if (text.tag != tag) continue;
    read_attr(attrs, 0, this->*text.member);
    known = true;
  }
  return known;
}

void kiv_hdr::endElement(const char* tag) {
  if (faults().tells_progress()) faults().header_tag_ended(tag);
  if (std::string_view(tag) != "kiv") return;
  stack().pop(this);
  root_seen_ = closed_ = true;
}

int kiv_hdr::get_elem_size(int type, int index) const {
  if (type < -128 || type > 127) return 0;
  const entry* definition = entry_of_tag_[static_cast<unsigned char>(type)];
  if (!definition || index < 0) return 0;
  const auto field = static_cast<std::size_t>(index);
  return field < definition->elems().size() ? std::max(definition->elems()[field].size, 0) : 0;
}

record_layout kiv_hdr::layout() const {
  record_layout made;
  for (int type = 0; type < kiv_type_limit; ++type) {
    for (unsigned field = 0; field < record_layout::max_fields; ++field) {
      made.set_width(static_cast<kiv_type>(type), field,
                     static_cast<std::uint32_t>(get_elem_size(type, static_cast<int>(field))));
    }
  }
  return made;
}

void kiv_hdr::dump_entries() const {
  if (!faults().tells_progress()) return;
  for (const auto& definition : entries_) {
    faults().record_defined(definition->tag(), definition->name(), definition->desc(),
                            definition->format());
    for (const elem& field : definition->elems()) faults().field_defined(field.name, field.size);
  }
}

}  // namespace kiv
