#include <algorithm>
#include <ostream>

#include "human.h"
#include "printable.h"
#include "result_table.h"

namespace kiv::db {
namespace {

constexpr std::size_t narrowest_text = 12;
constexpr std::string_view gap = "  ";
constexpr std::string_view bold = "\x1b[1m", dim = "\x1b[2m", plain = "\x1b[0m";

std::string shown(const result_cell& cell, column_kind kind) {
  if (const auto* text = std::get_if<std::string>(&cell)) return printable(*text);
  const auto* number = std::get_if<std::int64_t>(&cell);
  if (!number) return "-";
  switch (kind) {
    case column_kind::bytes:
      return human_bytes(*number);
    case column_kind::count:
      return grouped(*number);
    case column_kind::text:
    case column_kind::plain:
      break;
  }
  return std::to_string(*number);
}

// Whether the column holds text and may be cut.
bool is_text(const result_table& table, std::size_t column) {
  return std::ranges::any_of(table.rows, [&](const auto& row) {
    return std::holds_alternative<std::string>(row[column]);
  });
}

// Takes from the widest texts until the row fits.
void narrow(std::vector<std::size_t>& widths, const std::vector<bool>& texts, std::size_t limit) {
  for (;;) {
    std::size_t total = gap.size() * (widths.size() - 1);
    std::size_t widest = widths.size();
    for (std::size_t i = 0; i < widths.size(); ++i) {
      total += widths[i];
      const bool wider = texts[i] && (widest == widths.size() || widths[i] > widths[widest]);
      if (wider) widest = i;
    }
    if (total <= limit || widest == widths.size() || widths[widest] <= narrowest_text) return;
    --widths[widest];
  }
}

void print_cell(std::ostream& out, const std::string& text, std::size_t width, bool left,
                bool last) {
  const std::string cut = shortened(text, width);
  const std::size_t used = display_width(cut);
  const std::string padding(width > used ? width - used : 0, ' ');
  if (!left) out << padding;
  out << cut;
  if (left && !last) out << padding;
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

void print_aligned(std::ostream& out, const result_table& table, const print_style& style) {
  const std::size_t columns = table.columns.size();
  std::vector<std::size_t> widths;
  std::vector<bool> texts;
  std::vector<std::vector<std::string>> cells;
  for (const auto& row : table.rows) {
    auto& line = cells.emplace_back();
    for (std::size_t i = 0; i < columns; ++i) line.push_back(shown(row[i], table.columns[i].kind));
  }
  for (std::size_t i = 0; i < columns; ++i) {
    texts.push_back(is_text(table, i));
    std::size_t width = display_width(table.columns[i].title);
    for (const auto& line : cells) width = std::max(width, display_width(line[i]));
    widths.push_back(width);
  }
  if (columns > 0) narrow(widths, texts, style.width);

  if (!table.title.empty()) {
    out << (style.color ? bold : "") << table.title << (style.color ? plain : "") << '\n';
  }
  if (table.rows.empty()) {
    out << "(nothing)\n";
    return;
  }
  out << (style.color ? dim : "");
  for (std::size_t i = 0; i < columns; ++i) {
    if (i > 0) out << gap;
    print_cell(out, table.columns[i].title, widths[i], texts[i], i + 1 == columns);
  }
  out << (style.color ? plain : "") << '\n';
  for (const auto& line : cells) {
    for (std::size_t i = 0; i < columns; ++i) {
      if (i > 0) out << gap;
      print_cell(out, line[i], widths[i], texts[i], i + 1 == columns);
    }
    out << '\n';
  }
}

void print_csv(std::ostream& out, const result_table& table) {
  print_csv_names(out, table.columns);
  for (const auto& row : table.rows) print_csv_row(out, row);
}

void print_csv_names(std::ostream& out, const std::vector<result_column>& columns) {
  for (std::size_t i = 0; i < columns.size(); ++i) out << (i > 0 ? "," : "") << columns[i].name;
  out << '\n';
}

void print_csv_row(std::ostream& out, const std::vector<result_cell>& row) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i > 0) out << ',';
    if (const auto* number = std::get_if<std::int64_t>(&row[i])) out << *number;
    if (const auto* text = std::get_if<std::string>(&row[i])) print_csv_text(out, *text);
  }
  out << '\n';
}

std::string json_text(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string json = "\"";
  while (!text.empty()) {
    const std::size_t length = utf8_length(text);
    const auto first = static_cast<unsigned char>(text[0]);
    if (length == 0) {
      json += "\\ufffd";
    } else if (first == '"' || first == '\\') {
      json += {'\\', text[0]};
    } else if (first < 0x20) {
      json += "\\u00";
      json += {digits[first >> 4], digits[first & 15]};
    } else {
      json += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return json + '"';
}

void print_json(std::ostream& out, const result_table& table) {
  out << '[';
  std::string_view between_rows = "\n  ";
  for (const auto& row : table.rows) {
    out << between_rows;
    print_json_row(out, table.columns, row);
    between_rows = ",\n  ";
  }
  out << (table.rows.empty() ? "]" : "\n]");
}

void print_json_row(std::ostream& out, const std::vector<result_column>& columns,
                    const std::vector<result_cell>& row) {
  out << '{';
  for (std::size_t i = 0; i < row.size(); ++i) {
    out << (i > 0 ? ", " : "") << json_text(columns[i].name) << ": ";
    if (const auto* number = std::get_if<std::int64_t>(&row[i])) {
      out << *number;
    } else if (const auto* text = std::get_if<std::string>(&row[i])) {
      out << json_text(*text);
    } else {
      out << "null";
    }
  }
  out << '}';
}

}  // namespace kiv::db
