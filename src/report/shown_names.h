#pragma once

#include <absl/container/flat_hash_map.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "report/measures.h"
#include "report/name_book.h"

namespace kiv::report {

// What the small ones of a kind are put together under. No other name of a page reads so.
inline constexpr std::string_view others_name = "(others)";

// How much of a name is shown; nothing: all.
struct name_limits {
  std::optional<std::size_t> longest = {};      // characters of a name
  std::optional<std::size_t> most_frames = {};  // functions of a call path in a list
};

struct shown_name {
  std::string text;
  std::size_t json_bytes = 0;  // with quotes and escapes
};

// The names of a name book as a page shows them: valid UTF-8, perhaps cut in the middle, and no two
// of a key alike, so that a page can find a row's blocks by its name.
class shown_names {
 public:
  // The book must outlive it and takes no more names.
  shown_names(const name_book& names, const name_limits& limits);

  // Of all keys but paths.
  const shown_name& of(group_key key, std::uint32_t number);
  // The functions of a call path, outermost first; one in the middle may say how many are left out.
  std::vector<const shown_name*> frames(std::uint32_t path);
  // Any other text.
  std::string text(std::string_view whole);

  // Whether anything was cut so far.
  bool any_cut() const { return any_cut_; }

 private:
  const shown_name& keep(std::string text);
  std::string unique(group_key key, std::string name);

  const name_book& names_;
  name_limits limits_;
  bool any_cut_ = false;
  std::array<std::vector<const shown_name*>, key_count> shown_;  // by number; null: not yet asked
  std::deque<shown_name> kept_;
  // For each name that was given, in how many forms.
  std::array<absl::flat_hash_map<std::string, std::uint32_t>, key_count> given_;
};

}  // namespace kiv::report
