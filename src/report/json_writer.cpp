#include "report/json_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "report/printable.h"

namespace kiv::report {

std::string json_text(std::string_view text) {
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
      json += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return json + '"';
}

void json_writer::break_line() {
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
  if (!around.empty) out_ << (is_object ? "," : ", ");
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
  if (!around.empty) out_ << ", ";
  around.empty = false;
  out_ << json_text(name) << ": ";
  after_key_ = true;
}

void json_writer::text(std::string_view value) {
  before_value(false);
  out_ << json_text(value);
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
