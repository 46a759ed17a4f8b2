#include "report/shown_names.h"

#include <fmt/format.h>

#include <algorithm>

#include "report/printable.h"

namespace kiv::report {
namespace {

std::string valid_utf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = utf8_length(text);
    valid += length == 0 ? std::string_view("\ufffd") : text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return valid;
}

std::size_t index(group_key key) { return static_cast<std::size_t>(key); }

}  // namespace

shown_names::shown_names(const name_book& names, std::optional<std::size_t> longest,
                         std::optional<std::size_t> most_frames)
    : names_(names), longest_(longest), most_frames_(most_frames) {
  for (std::size_t key = 0; key < key_count; ++key) {
    if (static_cast<group_key>(key) == group_key::path) continue;
    shown_[key].resize(names.size(static_cast<group_key>(key)));
    given_[key].emplace(others_name, 1);
  }
}

std::string shown_names::text(std::string_view whole) {
  std::string valid = valid_utf8(whole);
  if (!longest_ || display_width(valid) <= *longest_) return valid;
  any_cut_ = true;
  return shortened(valid, *longest_);
}

std::string shown_names::unique(group_key key, std::string name) {
  auto& given = given_[index(key)];
  if (given.try_emplace(name, 1).second) return name;
  for (;;) {
    const std::string next = fmt::format("{} ({})", name, ++given[name]);
    if (given.try_emplace(next, 1).second) return next;
  }
}

const std::string& shown_names::of(group_key key, std::uint32_t number) {
  const std::string*& shown = shown_[index(key)][number];
  if (!shown) shown = &texts_.emplace_back(unique(key, text(names_.name(key, number))));
  return *shown;
}

std::vector<std::string> shown_names::frames(std::uint32_t path) {
  const auto functions = names_.frames(path);
  const std::size_t most = most_frames_.value_or(functions.size());
  const bool is_cut = functions.size() > most;
  any_cut_ = any_cut_ || is_cut;
  const std::size_t head = is_cut ? most / 2 : functions.size();
  std::vector<std::string> shown;
  for (std::size_t i = 0; i < head; ++i) shown.push_back(of(group_key::function, functions[i]));
  if (!is_cut) return shown;
  const std::size_t tail = functions.size() - (most - head);
  shown.push_back(fmt::format("({} functions left out)", tail - head));
  for (std::size_t i = tail; i < functions.size(); ++i) {
    shown.push_back(of(group_key::function, functions[i]));
  }
  return shown;
}

}  // namespace kiv::report
