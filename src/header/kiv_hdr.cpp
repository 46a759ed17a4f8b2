#include "header/kiv_hdr.h"

#include <algorithm>
#include <iostream>
#include <string_view>

#include "header/time_text.h"
#include "header/xml_parser.h"
#include "settings.h"

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

kiv_hdr::kiv_hdr(XmlParser* parser, const char* path, const char* description)
    : element("kiv_hdr"), parser_(parser), path_(path), input_(path), description_(description) {
  EL_STACK_PUSH(this);
}

int kiv_hdr::read_header() {
  if (!input_.is_open()) {
    std::cerr << "header file " << path_ << " cannot be opened\n";
    return 3;
  }
  const bool well_formed = feed_parser();
  input_.close();
  if (!well_formed) {
    const XML_Parser parser = parser_->get_parser();
    std::cerr << XML_ErrorString(XML_GetErrorCode(parser)) << " at line "
              << XML_GetCurrentLineNumber(parser) << '\n';
    return 2;
  }
  if (!root_seen_) {
    std::cerr << "no kiv element in header file " << path_ << '\n';
    return 2;
  }
  return 0;
}

// A header is one chunk for expat, unless it is so large that memory must be bounded.
bool kiv_hdr::feed_parser() {
  constexpr std::int64_t max_chunk = std::int64_t{64} << 20;
  std::vector<char> chunk(static_cast<std::size_t>(std::min(input_.size(), max_chunk)));
  for (std::int64_t left = input_.size(); left > 0;) {
    const auto wanted = static_cast<std::size_t>(std::min(left, max_chunk));
    const std::size_t got = input_.read(chunk.data(), wanted);
    const int is_final = 0;
    if (XML_Parse(parser_->get_parser(), chunk.data(), static_cast<int>(got), is_final) ==
        XML_STATUS_ERROR) {
      return false;
    }
    if (got < wanted) break;
    left -= static_cast<std::int64_t>(got);
  }
  return true;
}

void kiv_hdr::startElement(const char* tag, const char** attrs) {
  if (debug_level > 0) std::cerr << ">tag: " << tag << '\n';
  if (read_value(tag, attrs)) return;

  const std::string_view which = tag;
  if (which == "entry") {
    const auto& added = entries_.emplace_back(std::make_unique<entry>());
    added->set_attrs(tag, attrs);
    entry_of_tag_[static_cast<unsigned char>(added->tag())] = added.get();
  } else if (which == "kivfile") {
    files_.push_back(std::make_unique<kivfile>());
  } else if (which == "endianess") {
    if (const char* value = attr_value(attrs, 0)) little_endian_ = value[0] == 'l';
  } else if (which == "kiv") {
    root_seen_ = true;
  } else if (which != "al_alloc" && which != "entries" && debug_level > 0) {
    std::cerr << "kiv_hdr::startElement >>>> Unknown tag '" << tag << "' \n";
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
  if (debug_level > 0) std::cerr << "<tag: " << tag << '\n';
  if (std::string_view(tag) != "kiv") return;
  EL_STACK_POP(this);
  root_seen_ = true;
}

int kiv_hdr::get_elem_size(int type, int index) const {
  if (type < -128 || type > 127) return 0;
  const entry* definition = entry_of_tag_[static_cast<unsigned char>(type)];
  if (!definition || index < 0) return 0;
  const auto field = static_cast<std::size_t>(index);
  return field < definition->elems().size() ? std::max(definition->elems()[field]->size(), 0) : 0;
}

void kiv_hdr::dump_entries() const {
  if (debug_level <= 0) return;
  for (const auto& definition : entries_) {
    std::cerr << "tag: " << definition->tag() << " entry_name: " << definition->name() << '\n'
              << " desc: " << definition->desc() << " format: " << definition->format() << '\n';
    for (const auto& field : definition->elems()) {
      std::cout << "  name: " << field->name() << " size: " << field->size() << '\n';
    }
  }
}

std::ostream& kiv_hdr::dumphdr(std::ostream& os) const {
  os << runid_ << data_sep << pid_ << data_sep << time_text(start_secs_, start_nsecs_) << data_sep
     << time_text(end_secs_, end_nsecs_) << data_sep;
  for (const std::string* text : {&progname_, &lom_, &pacc_, &hostname_, &user_, &description_}) {
    os << *text << data_sep;
  }
  return os << m_entry_size_ << data_sep << mem_block_size_ << data_sep << m_group_size_;
}

std::ostream& operator<<(std::ostream& os, const kiv_hdr& header) { return header.dumphdr(os); }

}  // namespace kiv
