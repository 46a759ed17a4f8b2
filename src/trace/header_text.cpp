#include "trace/header_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "util/printable.h"

namespace kiv {
namespace {

// Of a valid sequence of two to four bytes. The two numbers that no document can hold become
// U+FFFD.
std::uint32_t code_point(std::string_view sequence) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(sequence[i]); };
  std::uint32_t value = byte(0) & (0x7fU >> sequence.size());
  for (std::size_t i = 1; i < sequence.size(); ++i) value = value << 6 | (byte(i) & 0x3fU);
  return value == 0xfffe || value == 0xffff ? 0xfffd : value;
}

// The document's encoding has one byte a character; what is UTF-8 is written as references. Control
// characters that no document can hold become question marks.
void append_value(std::string& to, std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = std::max<std::size_t>(utf8_length(text), 1);
    if (const char c = text.front(); length > 1) {
      to += fmt::format("&#{};", code_point(text.substr(0, length)));
    } else if (c == '&' || c == '<' || c == '"') {
      to += c == '&' ? "&amp;" : c == '<' ? "&lt;" : "&quot;";
    } else if (c == '\t' || c == '\n' || c == '\r') {
      to += fmt::format("&#{};", static_cast<int>(c));
    } else {
      to += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
    }
    text.remove_prefix(length);
  }
}

void append_tag(std::string& to, std::string_view indent, std::string_view name,
                const std::vector<std::pair<std::string, std::string>>& attributes,
                std::string_view end) {
  to += fmt::format("{}<{}", indent, name);
  for (const auto& [attribute, value] : attributes) {
    to += fmt::format(" {}=\"", attribute);
    append_value(to, value);
    to += '"';
  }
  to += end;
}

void append_tags(std::string& to, std::string_view indent,
                 const std::vector<header_text::element>& elements) {
  for (const header_text::element& one : elements)
    append_tag(to, indent, one.name, one.attributes, " />\n");
}

void append_entry(std::string& to, const record_definition& entry) {
  append_tag(
      to, "  ", "entry",
      {{"tag", std::string(1, entry.tag)}, {"name", entry.name}, {"desc", entry.description}},
      " >\n");
  std::string format;
  for (const record_definition::field& field : entry.fields) {
    append_tag(to, "   ", "elem", {{"name", field.name}, {"size", std::to_string(field.width)}},
               " />\n");
    (format += format.empty() ? "%" : " %") += field.kind;
  }
  append_tag(to, "   ", "format", {{"fmt", format}}, " />\n");
  to += "  </entry>\n";
}

}  // namespace

std::string header_text::document() const {
  std::string out = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<kiv>\n";
  append_tags(out, " ", identity);
  out += " <al_alloc>\n";
  append_tags(out, "  ", allocator);
  out += " </al_alloc>\n <entries>\n";
  for (const record_definition& entry : entries) append_entry(out, entry);
  out += " </entries>\n";
  for (const data_file& file : files) {
    out += " <kivfile>\n";
    append_tag(out, "  ", "file", {{"value", file.path}}, " />\n");
    append_tag(out, "  ", "size", {{"value", file.size}}, " />\n");
    out += " </kivfile>\n";
  }
  if (!closed) return out;
  append_tags(out, " ", end);
  return out += "</kiv>\n";
}

header_text make_header_text(const trace_identity& identity, bool little_endian,
                             int address_width) {
  const auto number = [](std::int64_t value) { return std::to_string(value); };
  header_text made;
  made.identity = {{"version", {{"type", "1"}}},
                   {"filetype", {{"type", "bin"}}},
                   {"endianess", {{"values", little_endian ? "l" : "B"}}},
                   {"pid", {{"value", number(identity.pid)}}},
                   {"runid", {{"value", identity.run_id}}}};
  made.allocator = {{"m_entry", {{"size", number(identity.m_entry_size)}}},
                    {"mem_block", {{"size", number(identity.mem_block_size)}}},
                    {"m_group", {{"size", number(identity.m_group_size)}}}};
  made.entries = record_definitions(address_width);
  made.end = {{"time_start",
               {{"secs", number(identity.start.secs)}, {"nsecs", number(identity.start.nsecs)}}},
              {"time_end", {{"secs", "0"}, {"nsecs", "0"}}},
              {"progname", {{"name", identity.program}}},
              {"user", {{"value", identity.user}}},
              {"lom", {{"value", identity.environment}}},
              {"pacc", {{"value", identity.account}}},
              {"hostname", {{"value", identity.host}}}};
  return made;
}

void set_end_time(header_text& header, moment time) {
  for (header_text::element& one : header.end) {
    if (one.name == "time_end") {
      one.attributes = {{"secs", std::to_string(time.secs)}, {"nsecs", std::to_string(time.nsecs)}};
    }
  }
}

std::string header_file_name(std::string_view base, std::string_view pid) {
  return fmt::format("{}.{}.kivhdr", base, pid);
}

std::string data_file_name(std::string_view base, std::string_view pid, std::size_t number) {
  return fmt::format("{}.{}.{:03}.kivdat", base, pid, number);
}

}  // namespace kiv
