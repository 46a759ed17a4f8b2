#include "report/json_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>
#include <utility>

#include "report/printable.h"

namespace kiv::report {

namespace {

// What a page must not hold literally: a tag's or an entity's beginning, and line ends that scripts
// know but JSON does not.
std::string_view page_escape(std::string_view character) {
  constexpr std::pair<std::string_view, std::string_view> escapes[] = {{"<", "\\u003c"},
                                                                       {">", "\\u003e"},
                                                                       {"&", "\\u0026"},
                                                                       {"\u2028", "\\u2028"},
                                                                       {"\u2029", "\\u2029"}};
  for (const auto& [literal, escaped] : escapes) {
    if (character == literal) return escaped;
  }
  return character;
}

}  // namespace

std::string json_text(std::string_view text, json_form form) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string json = "\"";
  json.reserve(text.size() + 2);
  while (!text.empty()) {
    const std::size_t length = utf8_length(text);
    const auto first = static_cast<unsigned char>(text[0]);
    if (length == 0) {
      json += "\xef\xbf\xbd";
    } else if (first == '"' || first == '\\') {
      json += {'\\', text[0]};
    } else if (first < 0x20 || first == 0x7f) {
      json += "\\u00";
      json += {digits[first >> 4], digits[first & 15]};
    } else {
      const std::string_view character = text.substr(0, length);
      json += form == json_form::in_page ? page_escape(character) : character;
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return json + '"';
}

void json_writer::break_line() {
  if (form_ == json_form::in_page) return;
  out_ << '\n';
  for (std::size_t i = 0; i < levels_.size(); ++i) out_ << "  ";
}

// An object in an array begins a line, so that a row is a line; all else stands behind its comma.
void json_writer::before_value(bool is_object) {
  if (after_key_) {
    after_key_ = false;
    return;
  }
  if (levels_.empty()) return;
  level& around = levels_.back();
  if (!around.empty) out_ << (is_object || form_ == json_form::in_page ? "," : ", ");
  around.empty = false;
  if (is_object) {
    around.broken = true;
    break_line();
  }
}

void json_writer::open(char bracket) {
  before_value(bracket == '{');
  out_ << bracket;
  levels_.push_back({bracket == '{' ? '}' : ']'});
}

void json_writer::close(char bracket) {
  const bool broken = levels_.back().broken;
  levels_.pop_back();
  if (broken) break_line();
  out_ << bracket;
}

void json_writer::key(std::string_view name) {
  level& around = levels_.back();
  const bool in_page = form_ == json_form::in_page;
  if (!around.empty) out_ << (in_page ? "," : ", ");
  around.empty = false;
  out_ << json_text(name, form_) << (in_page ? ":" : ": ");
  after_key_ = true;
}

void json_writer::text(std::string_view value) {
  before_value(false);
  out_ << json_text(value, form_);
}

void json_writer::number(std::uint64_t value) {
  before_value(false);
  out_ << value;
}

void json_writer::number(std::int64_t value) {
  before_value(false);
  out_ << value;
}

void json_writer::number(double value) {
  before_value(false);
  out_ << fmt::format("{}", value);
}

void json_writer::boolean(bool value) {
  before_value(false);
  out_ << (value ? "true" : "false");
}

void json_writer::null() {
  before_value(false);
  out_ << "null";
}

void json_writer::end_document() { out_ << '\n'; }

}  // namespace kiv::report
