#include "clickhouse/result_cursor.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace kiv::clickhouse {
namespace {

using store::value_type;

value_type type_of(std::string_view name) {
  for (const std::string_view around : {"LowCardinality(", "Nullable("}) {
    if (name.starts_with(around) && name.ends_with(')')) {
      name = name.substr(around.size(), name.size() - around.size() - 1);
    }
  }
  if (name.starts_with("Int") || name.starts_with("UInt")) {
    // Wider ones than 64 bits are texts.
    return name.ends_with("128") || name.ends_with("256") ? value_type::text : value_type::integer;
  }
  return name.starts_with("Float") ? value_type::real : value_type::text;
}

// Whether it may be the name of a type at all.
bool is_type(std::string_view name) {
  const auto may_stand = [](char c) { return c >= ' ' && c < 0x7f && c != '<' && c != '>'; };
  return !name.empty() && name[0] >= 'A' && name[0] <= 'Z' && std::ranges::all_of(name, may_stand);
}

template <class Number>
bool read_whole(std::string_view text, Number& into) {
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), into);
  return failure == std::errc() && end == text.data() + text.size();
}

}  // namespace

result_cursor::result_cursor(const server_url& url, std::string_view sql)
    : own_(std::make_unique<server>(url)), server_(*own_) {
  begin(sql, false);
}

result_cursor::result_cursor(server& shared, std::string_view sql, std::string_view types,
                             bool patient)
    : server_(shared) {
  begin(sql, patient);
  if (!failure_) expect(types);
}

void result_cursor::expect(std::string_view types) {
  bool same = types.size() == columns_.size();
  for (std::size_t i = 0; same && i < types.size(); ++i) {
    same = (types[i] == 'n') == (columns_[i].type == value_type::integer);
  }
  if (!same) fail("gives an answer to something else; is it a ClickHouse server?");
}

void result_cursor::begin(std::string_view sql, bool patient) {
  failure_ = server_.select(sql, patient);
  if (failure_) return;
  if (!next_line()) return fail("gives no answer; is it a ClickHouse server?");
  for (const auto& f : reader_.read(line_)) columns_.push_back({std::string(f.text)});
  if (!next_line()) return fail("gives an answer without types; is it a ClickHouse server?");
  const auto& types = reader_.read(line_);
  const bool are_types =
      std::ranges::all_of(types, [](const tsv_field& f) { return is_type(f.text); });
  if (types.size() != columns_.size() || !are_types) {
    return fail("gives an answer that is no table; is it a ClickHouse server?");
  }
  for (std::size_t i = 0; i < types.size(); ++i) columns_[i].type = type_of(types[i].text);
}

bool result_cursor::next_line() {
  for (std::size_t searched = next_;;) {
    const auto end = buffer_.find('\n', searched);
    if (end != std::string::npos) {
      line_ = std::string_view(buffer_).substr(next_, end - next_);
      next_ = end + 1;
      return true;
    }
    buffer_.erase(0, next_);
    next_ = 0;
    searched = buffer_.size();
    if (!server_.connection().read(buffer_)) break;
  }
  if (!server_.connection().failure().empty()) {
    fail(server_.connection().failure());
  } else if (!buffer_.empty()) {
    fail("gives an answer that ends within a row");
  }
  return false;
}

void result_cursor::fail(std::string text) {
  if (failure_) return;
  failure_ = {failure_kind::server, 0, std::move(text)};
}

bool result_cursor::step() {
  if (failure_ || done_) return false;
  done_ = !next_line();
  if (done_) return false;
  row_ = &reader_.read(line_);
  bool good = row_->size() == columns_.size();
  for (std::size_t i = 0; good && i < columns_.size(); ++i) {
    const auto& [text, raw, is_null] = (*row_)[i];
    std::int64_t number = 0;
    std::uint64_t wide = 0;
    good = is_null || columns_[i].type != value_type::integer || read_whole(text, number) ||
           read_whole(text, wide);
  }
  if (!good) fail("gives an answer that does not fit its own types");
  return good;
}

value_type result_cursor::type(int column) const {
  if (field(column).is_null) return value_type::null;
  std::int64_t number = 0;
  const bool too_large =
      at(column).type == value_type::integer && !read_whole(field(column).text, number);
  return too_large ? value_type::text : at(column).type;
}

std::int64_t result_cursor::integer(int column) const {
  std::int64_t number = 0;
  std::uint64_t wide = 0;
  if (read_whole(field(column).text, number)) return number;
  return read_whole(field(column).text, wide) ? std::numeric_limits<std::int64_t>::max() : 0;
}

double result_cursor::real(int column) const {
  double number = 0;
  return read_whole(field(column).text, number) ? number : 0;
}

}  // namespace kiv::clickhouse
