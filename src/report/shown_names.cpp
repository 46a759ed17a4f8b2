#include "report/shown_names.h"

#include <fmt/format.h>

#include <algorithm>

#include "report/json_writer.h"
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

shown_names::shown_names(const name_book& names, const name_limits& limits)
    : names_(names), limits_(limits) {
  for (std::size_t key = 0; key < key_count; ++key) {
    if (static_cast<group_key>(key) == group_key::path) continue;
    shown_[key].resize(names.size(static_cast<group_key>(key)));
    given_[key].emplace(others_name, 1);
  }
}

std::string shown_names::text(std::string_view whole) {
  std::string valid = valid_utf8(whole);
  if (!limits_.longest || display_width(valid) <= *limits_.longest) return valid;
  any_cut_ = true;
  return shortened(valid, *limits_.longest);
}

std::string shown_names::unique(group_key key, std::string name) {
  auto& given = given_[index(key)];
  if (given.try_emplace(name, 1).second) return name;
  for (;;) {
    std::string next = fmt::format("{} ({})", name, ++given[name]);
    if (given.try_emplace(next, 1).second) return next;
  }
}

const shown_name& shown_names::keep(std::string text) {
  const std::size_t bytes = json_text(text, json_form::in_page).size();
  return kept_.emplace_back(shown_name{std::move(text), bytes});
}

const shown_name& shown_names::of(group_key key, std::uint32_t number) {
  const shown_name*& shown = shown_[index(key)][number];
  if (!shown) shown = &keep(unique(key, text(names_.name(key, number))));
  return *shown;
}

std::vector<const shown_name*> shown_names::frames(std::uint32_t path) {
  const auto functions = names_.frames(path);
  const std::size_t most =
      std::min(limits_.most_frames.value_or(functions.size()), functions.size());
  const std::size_t left_out = functions.size() - most, head = most / 2;
  std::vector<const shown_name*> shown;
  shown.reserve(most + 1);
  for (std::size_t i = 0; i < functions.size(); ++i) {
    if (left_out > 0 && i == head) {
      any_cut_ = true;
      shown.push_back(&keep(fmt::format("({} functions left out)", left_out)));
      i += left_out;
    }
    shown.push_back(&of(group_key::function, functions[i]));
  }
  return shown;
}

}  // namespace kiv::report
