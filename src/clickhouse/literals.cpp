#include "clickhouse/literals.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

namespace kiv::clickhouse {
namespace {

// The letter behind a backslash for a byte; 0 when it stands for itself.
constexpr char escape_of(char c) {
  switch (c) {
    case '\0':
      return '0';
    case '\b':
      return 'b';
    case '\f':
      return 'f';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\t':
      return 't';
    case '\'':
    case '\\':
      return c;
    default:
      return 0;
  }
}

constexpr char byte_of(char escape) {
  switch (escape) {
    case '0':
      return '\0';
    case 'a':
      return '\a';
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case 'v':
      return '\v';
    default:
      return escape;
  }
}

void append_escaped(std::string& into, std::string_view text) {
  std::size_t done = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char letter = escape_of(text[i]);
    if (letter == 0) continue;
    into.append(text, done, i - done);
    into += '\\';
    into += letter;
    done = i + 1;
  }
  into.append(text, done);
}

void append_number(std::string& into, std::int64_t number) {
  char digits[24];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
  into.append(digits, end);
}

bool take(std::string_view& text, char c) {
  if (!text.starts_with(c)) return false;
  text.remove_prefix(1);
  return true;
}

// Reads "[", members with commas between them, "]" and nothing more.
template <class Member>
bool read_members(std::string_view text, Member read_member) {
  if (!take(text, '[')) return false;
  if (take(text, ']')) return text.empty();
  do {
    if (!read_member(text)) return false;
  } while (take(text, ','));
  return take(text, ']') && text.empty();
}

}  // namespace

std::string text_literal(std::string_view text) {
  std::string literal = "'";
  append_escaped(literal, text);
  return literal + '\'';
}

std::string quoted_identifier(std::string_view name) {
  std::string text = "`";
  for (const char c : name) {
    if (c == '`' || c == '\\') text += '\\';
    text += c;
  }
  return text + '`';
}

void tsv_writer::add(std::int64_t number) {
  begin_field();
  append_number(bytes_, number);
}

void tsv_writer::add(std::string_view text) {
  begin_field();
  append_escaped(bytes_, text);
}

void tsv_writer::add_ready(std::string_view fields) {
  begin_field();
  bytes_ += fields;
}

void tsv_writer::add_null() {
  begin_field();
  bytes_ += "\\N";
}

void tsv_writer::add(const std::vector<std::int64_t>& numbers) {
  begin_field();
  bytes_ += '[';
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0) bytes_ += ',';
    append_number(bytes_, numbers[i]);
  }
  bytes_ += ']';
}

void tsv_writer::add(const std::vector<std::string_view>& texts) {
  begin_field();
  bytes_ += '[';
  for (std::size_t i = 0; i < texts.size(); ++i) {
    bytes_ += i > 0 ? ",'" : "'";
    append_escaped(bytes_, texts[i]);
    bytes_ += '\'';
  }
  bytes_ += ']';
}

std::string tsv_writer::take() {
  at_start_ = true;
  return std::exchange(bytes_, {});
}

void unescape(std::string_view text, std::string& into) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool escaped = text[i] == '\\' && i + 1 < text.size();
    if (escaped) ++i;
    into += escaped ? byte_of(text[i]) : text[i];
  }
}

const std::vector<tsv_field>& tsv_reader::read(std::string_view line) {
  fields_.clear();
  unescaped_.clear();
  unescaped_.reserve(line.size());  // so that what points into it stays
  for (;;) {
    const auto tab = std::min(line.find('\t'), line.size());
    std::string_view text = line.substr(0, tab);
    const std::string_view raw = text;
    const bool is_null = text == "\\N";
    if (!is_null && text.find('\\') != std::string_view::npos) {
      const std::size_t begin = unescaped_.size();
      unescape(text, unescaped_);
      text = std::string_view(unescaped_).substr(begin);
    }
    fields_.push_back({is_null ? std::string_view() : text, raw, is_null});
    if (tab == line.size()) return fields_;
    line.remove_prefix(tab + 1);
  }
}

bool read_array(std::string_view text, std::vector<std::int64_t>& numbers) {
  numbers.clear();
  return read_members(text, [&](std::string_view& rest) {
    const auto [end, failure] =
        std::from_chars(rest.data(), rest.data() + rest.size(), numbers.emplace_back());
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    return failure == std::errc();
  });
}

bool read_array(std::string_view text, std::vector<std::string>& texts) {
  texts.clear();
  return read_members(text, [&](std::string_view& rest) {
    if (!take(rest, '\'')) return false;
    std::size_t end = 0;
    while (end < rest.size() && rest[end] != '\'') end += rest[end] == '\\' ? 2 : 1;
    if (end >= rest.size()) return false;
    unescape(rest.substr(0, end), texts.emplace_back());
    rest.remove_prefix(end + 1);
    return true;
  });
}

}  // namespace kiv::clickhouse
