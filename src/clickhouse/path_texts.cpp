#include "clickhouse/path_texts.h"

#include <cstddef>
#include <string_view>

namespace kiv::clickhouse {
namespace {

constexpr std::size_t longest_text = 4000, longest_kept = 2000;  // characters

// Where a character of SQLite's ends: a byte from 0xc0 on takes what continues it along.
std::size_t end_of_character(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const bool leads = byte(at++) >= 0xc0;
  while (leads && at < text.size() && (byte(at) & 0xc0) == 0x80) ++at;
  return at;
}

// SQLite's functions of texts end at a zero byte.
std::string_view until_zero(std::string_view text) { return text.substr(0, text.find('\0')); }

std::size_t characters(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size(); at = end_of_character(text, at)) ++count;
  return count;
}

std::string_view last_characters(std::string_view text, std::size_t all, std::size_t kept) {
  std::size_t at = 0;
  for (; all > kept; --all) at = end_of_character(text, at);
  return text.substr(at);
}

std::string with_called(const path_text& parent, const std::string& function) {
  if (parent.depth == 0) return function;
  const std::string_view counted = until_zero(parent.text);
  // No text has more characters than bytes.
  const std::size_t length = counted.size() > longest_text ? characters(counted) : 0;
  if (length <= longest_text) return parent.text + " > " + function;
  return "... > " + std::string(last_characters(counted, length, longest_kept)) + " > " + function;
}

// Numbers the paths level by level, the children of one path side by side.
void number_by_level(const profile& p, std::vector<path_text>& texts) {
  std::vector<std::vector<std::uint32_t>> children(p.paths.size());
  for (std::uint32_t i = 1; i < p.paths.size(); ++i) children[p.paths[i].parent].push_back(i);
  std::vector<std::uint32_t> queue{0};
  for (std::size_t i = 0; i < queue.size(); ++i) {
    const auto& next = children[queue[i]];
    texts[queue[i]].order = static_cast<std::int64_t>(i);
    queue.insert(queue.end(), next.begin(), next.end());
  }
}

}  // namespace

std::string function_text(const profile_function& f) {
  return f.object.empty() ? f.name : f.object + ":" + f.name;
}

std::vector<path_text> path_texts(const profile& p) {
  std::vector<path_text> texts(p.paths.size());
  if (texts.empty()) return texts;
  texts[0].text = "(no function)";
  for (std::size_t i = 1; i < texts.size(); ++i) {
    const path_text& parent = texts[p.paths[i].parent];
    texts[i].text = with_called(parent, function_text(p.functions[p.paths[i].function]));
    texts[i].depth = parent.depth + 1;
  }
  number_by_level(p, texts);
  return texts;
}

}  // namespace kiv::clickhouse
