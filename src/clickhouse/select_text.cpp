#include "clickhouse/select_text.h"

#include <algorithm>
#include <cctype>

#include "clickhouse/literals.h"

namespace kiv::clickhouse {
namespace {

// Where a literal, a quoted name or a comment that begins at `at` ends; `at` when none does.
std::size_t end_of_quoted(std::string_view sql, std::size_t at) {
  const std::string_view rest = sql.substr(at);
  if (rest.starts_with("--")) return std::min(sql.find('\n', at), sql.size());
  if (rest.starts_with("/*")) {
    const auto end = sql.find("*/", at + 2);
    return end == std::string_view::npos ? sql.size() : end + 2;
  }
  const char quote = rest[0];
  if (quote != '\'' && quote != '"' && quote != '`') return at;
  for (++at; at < sql.size() && sql[at] != quote; ++at) {
    if (sql[at] == '\\') ++at;
  }
  return std::min(at + 1, sql.size());
}

bool is_blank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

}  // namespace

bool is_select(std::string_view sql) {
  std::size_t at = 0;
  while (at < sql.size()) {
    const bool comment = sql.substr(at).starts_with("--") || sql.substr(at).starts_with("/*");
    if (comment) {
      at = end_of_quoted(sql, at);
    } else if (is_blank(sql[at]) || sql[at] == '(') {
      ++at;
    } else {
      break;
    }
  }
  std::string word;
  while (at < sql.size() && std::isalpha(static_cast<unsigned char>(sql[at])) != 0) {
    word += static_cast<char>(std::tolower(static_cast<unsigned char>(sql[at++])));
  }
  return word == "select" || word == "with";
}

std::string with_texts(std::string_view sql, const std::vector<std::string>& texts) {
  std::string made;
  std::size_t used = 0;
  for (std::size_t at = 0; at < sql.size();) {
    const std::size_t end = end_of_quoted(sql, at);
    if (end == at && sql[at] == '?' && used < texts.size()) {
      made += text_literal(texts[used++]);
    } else {
      made += sql.substr(at, std::max<std::size_t>(end - at, 1));
    }
    at = std::max(end, at + 1);
  }
  return made;
}

}  // namespace kiv::clickhouse
