#include "report/table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <ostream>

#include "report/human.h"
#include "report/printable.h"

namespace kiv::report {
namespace {

constexpr std::size_t narrowest_text = 16;
constexpr std::size_t lines_held_back = 1000;
constexpr std::string_view gap = "  ";

template <class Number>
std::string shown_number(Number number, column_kind kind) {
  switch (kind) {
    case column_kind::bytes:
      return human_bytes(number);
    case column_kind::change:
      return human_change(static_cast<std::int64_t>(number));
    case column_kind::count:
      return grouped(number);
    case column_kind::text:
    case column_kind::plain:
    case column_kind::share:
      break;
  }
  return std::to_string(number);
}

// The shortest text that reads back as the same number.
std::string shown_real(double number) {
  return std::isfinite(number) ? fmt::format("{}", number) : std::string();
}

std::string shown(const cell& value, column_kind kind) {
  if (const auto* text = std::get_if<std::string>(&value)) return printable(*text);
  if (const auto* number = std::get_if<std::int64_t>(&value)) return shown_number(*number, kind);
  if (const auto* number = std::get_if<std::uint64_t>(&value)) return shown_number(*number, kind);
  if (const auto* number = std::get_if<double>(&value)) return shown_real(*number);
  return "-";
}

std::string painted(std::string_view text, std::string_view code, const print_style& style) {
  if (!style.color) return std::string(text);
  return "\x1b[" + std::string(code) + 'm' + std::string(text) + "\x1b[0m";
}

void print_csv_text(std::ostream& out, std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
    out << text;
    return;
  }
  out << '"';
  for (const char c : text) {
    if (c == '"') out << '"';
    out << c;
  }
  out << '"';
}

}  // namespace

aligned_table::aligned_table(std::ostream& out, std::vector<column> columns,
                             const print_style& style, std::string_view indent)
    : out_(out), columns_(std::move(columns)), style_(style), indent_(indent) {}

void aligned_table::add(const table_row& cells) {
  line next;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    next.cells.push_back(shown(cells[i], columns_[i].kind));
  }
  add_line(std::move(next));
}

void aligned_table::add_below(std::string_view text) { add_line({{printable(text)}}); }

void aligned_table::add_line(line next) {
  if (!widths_.empty()) {
    print_line(next);
    return;
  }
  first_lines_.push_back(std::move(next));
  if (first_lines_.size() == lines_held_back) finish();
}

void aligned_table::finish() {
  if (!widths_.empty() || columns_.empty()) return;
  set_widths();
  print_titles();
  for (const auto& held : first_lines_) print_line(held);
  first_lines_.clear();
}

void aligned_table::set_widths() {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::size_t width = display_width(columns_[i].title);
    for (const auto& [cells] : first_lines_) {
      const bool alone = cells.size() == 1 && columns_.size() > 1;
      if (alone && i + 1 < columns_.size()) continue;
      width = std::max(width, display_width(cells[alone ? 0 : i]));
    }
    widths_.push_back(width);
  }
  if (style_.width) narrow(*style_.width - std::min(*style_.width, display_width(indent_)));
}

// Takes from the widest texts until a line fits.
void aligned_table::narrow(std::size_t limit) {
  std::size_t total = gap.size() * (widths_.size() - 1);
  for (const auto width : widths_) total += width;
  while (total > limit) {
    // The widest text goes down to the next in width, or as far as is needed.
    std::size_t widest = widths_.size(), next = narrowest_text;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
      if (is_text(i) && (widest == widths_.size() || widths_[i] > widths_[widest])) widest = i;
    }
    if (widest == widths_.size() || widths_[widest] <= narrowest_text) return;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
      if (i != widest && is_text(i)) next = std::max(next, widths_[i]);
    }
    const std::size_t take =
        std::min(total - limit, std::max<std::size_t>(widths_[widest] - next, 1));
    widths_[widest] -= take;
    total -= take;
  }
}

void aligned_table::print_titles() {
  out_ << indent_ << (style_.color ? "\x1b[2m" : "");
  for (std::size_t i = 0; i < columns_.size(); ++i) print_cell(columns_[i].title, i);
  out_ << (style_.color ? "\x1b[0m" : "") << '\n';
}

void aligned_table::print_line(const line& next) {
  out_ << indent_;
  if (next.cells.size() == 1 && columns_.size() > 1) {
    std::size_t before = 0;
    for (std::size_t i = 0; i + 1 < widths_.size(); ++i) before += widths_[i] + gap.size();
    out_ << std::string(before, ' ');
    print_cell(next.cells[0], columns_.size() - 1);
  } else {
    for (std::size_t i = 0; i < columns_.size(); ++i) print_cell(next.cells[i], i);
  }
  out_ << '\n';
}

void aligned_table::print_cell(const std::string& text, std::size_t column) {
  const bool last = column + 1 == columns_.size();
  const std::string cut = style_.width && is_text(column) ? shortened(text, widths_[column]) : text;
  const std::size_t used = display_width(cut);
  const std::string padding(widths_[column] > used ? widths_[column] - used : 0, ' ');
  if (!is_text(column)) out_ << padding;
  out_ << cut;
  if (is_text(column) && !last) out_ << padding;
  if (!last) out_ << gap;
}

csv_table::csv_table(std::ostream& out, const std::vector<column>& columns) : out_(out) {
  table_row names;
  for (const auto& c : columns) names.emplace_back(c.name);
  add(names);
}

void csv_table::add(const table_row& cells) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) out_ << ',';
    if (const auto* number = std::get_if<std::int64_t>(&cells[i])) out_ << *number;
    if (const auto* number = std::get_if<std::uint64_t>(&cells[i])) out_ << *number;
    if (const auto* number = std::get_if<double>(&cells[i])) out_ << shown_real(*number);
    if (const auto* text = std::get_if<std::string>(&cells[i])) print_csv_text(out_, *text);
  }
  out_ << '\n';
}

void write_json_row(json_writer& json, const std::vector<column>& columns, const table_row& cells) {
  json.begin_object();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    json.key(columns[i].name);
    if (const auto* number = std::get_if<std::int64_t>(&cells[i])) {
      json.number(*number);
    } else if (const auto* unsigned_number = std::get_if<std::uint64_t>(&cells[i])) {
      json.number(*unsigned_number);
    } else if (const auto* real = std::get_if<double>(&cells[i]); real && std::isfinite(*real)) {
      json.number(*real);
    } else if (const auto* text = std::get_if<std::string>(&cells[i])) {
      json.text(*text);
    } else {
      json.null();
    }
  }
  json.end_object();
}

table_printer::table_printer(std::ostream& out, std::vector<column> columns,
                             const print_style& style)
    : style_(style), columns_(std::move(columns)), json_(out) {
  switch (style.format) {
    case output_format::terminal:
      aligned_.emplace(out, columns_, style);
      break;
    case output_format::csv:
      csv_.emplace(out, columns_);
      break;
    case output_format::json:
      json_.begin_array();
      break;
  }
}

void table_printer::add(const table_row& cells) {
  switch (style_.format) {
    case output_format::terminal:
      aligned_->add(cells);
      break;
    case output_format::csv:
      csv_->add(cells);
      break;
    case output_format::json:
      write_json_row(json_, columns_, cells);
      break;
  }
}

void table_printer::finish() {
  if (aligned_) aligned_->finish();
  if (style_.format == output_format::json) {
    json_.end_array();
    json_.end_document();
  }
}

std::string bold(std::string_view text, const print_style& style) {
  return painted(text, "1", style);
}
std::string dim(std::string_view text, const print_style& style) {
  return painted(text, "2", style);
}
std::string alarming(std::string_view text, const print_style& style) {
  return painted(text, "1;31", style);
}

}  // namespace kiv::report
