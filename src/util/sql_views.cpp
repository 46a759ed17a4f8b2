#include "util/sql_views.h"

#include <algorithm>
#include <map>

namespace kiv {
namespace {

using macro_table = std::map<std::string_view, std::string, std::less<>>;

std::string_view take_line(std::string_view& text) {
  const auto end = std::min(text.find('\n'), text.size());
  const auto line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

std::string_view without_blank_ends(std::string_view text) {
  const auto first = std::min(text.find_first_not_of(" \n"), text.size());
  text.remove_prefix(first);
  return text.substr(0, text.find_last_not_of(" \n;") + 1);
}

macro_table read_macros(std::string_view text) {
  macro_table macros;
  std::string* body = nullptr;
  while (!text.empty()) {
    const auto line = take_line(text);
    if (line.starts_with("-- ") && line.ends_with(':')) {
      body = &macros[line.substr(3, line.size() - 4)];
    } else if (body != nullptr && !line.starts_with("--")) {
      *body += std::string(line) + '\n';
    }
  }
  return macros;
}

std::string expand(std::string_view text, const macro_table& macros) {
  std::string all;
  for (;;) {
    const auto open = text.find("{{");
    const auto close = open == std::string_view::npos ? open : text.find("}}", open);
    if (close == std::string_view::npos) return all + std::string(text);
    all += text.substr(0, open);
    const auto macro = macros.find(text.substr(open + 2, close - open - 2));
    if (macro != macros.end()) all += expand(without_blank_ends(macro->second), macros);
    text.remove_prefix(close + 2);
  }
}

std::string_view without_number(std::string_view name) {
  const auto first = name.find_first_not_of("0123456789");
  const bool numbered = first != 0 && first < name.size() && name[first] == '_';
  return numbered ? name.substr(first + 1) : name;
}

}  // namespace

std::vector<sql_view> read_sql_views(std::span<const embedded_text> files,
                                     std::string_view macros_text) {
  const auto macros = read_macros(macros_text);
  std::vector<sql_view> views;
  for (const auto& file : files) {
    std::string_view text = file.text;
    std::string_view description = take_line(text);
    description.remove_prefix(std::min<std::size_t>(3, description.size()));
    views.push_back(
        {without_number(file.name), description, expand(without_blank_ends(text), macros)});
  }
  return views;
}

std::string_view find_text(std::span<const embedded_text> files, std::string_view name) {
  const auto found = std::ranges::find(files, name, &embedded_text::name);
  return found == files.end() ? std::string_view() : found->text;
}

}  // namespace kiv
