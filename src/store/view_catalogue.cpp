#include "store/view_catalogue.h"

#include <algorithm>
#include <map>
#include <vector>

#include "store/schema.h"
#include "util/embedded_text.h"

namespace kiv {
std::span<const embedded_text> store_schema();
std::span<const embedded_text> store_views();
}  // namespace kiv

namespace kiv::store {
namespace {

std::string_view file_text(std::span<const embedded_text> files, std::string_view name) {
  const auto found = std::ranges::find(files, name, &embedded_text::name);
  return found == files.end() ? std::string_view() : found->text;
}

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

std::map<std::string_view, std::string, std::less<>> read_macros() {
  std::map<std::string_view, std::string, std::less<>> macros;
  std::string* body = nullptr;
  for (std::string_view rest = file_text(store_schema(), "macros"); !rest.empty();) {
    const auto line = take_line(rest);
    if (line.starts_with("-- ") && line.ends_with(':')) {
      body = &macros[line.substr(3, line.size() - 4)];
    } else if (body != nullptr && !line.starts_with("--")) {
      *body += std::string(line) + '\n';
    }
  }
  return macros;
}

std::string expand(std::string_view text, const auto& macros) {
  std::string all;
  for (;;) {
    const auto open = text.find("{{");
    const auto close = open == std::string_view::npos ? open : text.find("}}", open);
    if (close == std::string_view::npos) return all + std::string(text);
    all += text.substr(0, open);
    const auto macro = macros.find(text.substr(open + 2, close - open - 2));
    if (macro != macros.end()) all += without_blank_ends(macro->second);
    text.remove_prefix(close + 2);
  }
}

struct catalogue {
  std::vector<std::string> selects;
  std::vector<view> views;
};

catalogue read_catalogue() {
  catalogue all;
  const auto macros = read_macros();
  all.selects.reserve(store_views().size());
  for (const auto& file : store_views()) {
    std::string_view text = file.text;
    std::string_view description = take_line(text);
    description.remove_prefix(std::min<std::size_t>(3, description.size()));
    all.selects.push_back(expand(without_blank_ends(text), macros));
    all.views.push_back({file.name, description, all.selects.back()});
  }
  return all;
}

}  // namespace

std::span<const view> views() {
  static const catalogue all = read_catalogue();
  return all.views;
}

const view* find_view(std::string_view name) {
  const auto found = std::ranges::find(views(), name, &view::name);
  return found == views().end() ? nullptr : &*found;
}

std::string schema_sql() {
  std::string sql(file_text(store_schema(), "schema"));
  for (const auto& v : views()) {
    sql += "\n-- " + std::string(v.description) + "\nCREATE VIEW " + std::string(v.name) + " AS\n" +
           std::string(v.select) + ";\n";
  }
  return sql;
}

}  // namespace kiv::store
