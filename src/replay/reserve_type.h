#pragma once

#include <cstdint>
#include <string_view>

namespace kiv {

// What the text of a reservation says about its allocation id. Looks into the text but for the
// category. A part that the text does not give has no value.
struct reserve_class {
  enum class process_link : std::uint8_t { none, mal, xml };

  std::string_view category;  // a static text; empty: the text is of no known kind
  bool has_description = false;
  std::string_view description;
  bool has_reference = false;
  std::string_view reference;
  process_link link = process_link::none;
  bool description_is_session = false;  // the session name of the process named by the reference
};

reserve_class classify_reserve_type(std::string_view text);

// The process number of a reservation text: the digits behind its first ':', modulo 2^32.
std::uint32_t process_of_reserve_type(std::string_view text);

// The text from `position` on; nothing of it when it is shorter.
inline std::string_view text_from(std::string_view text, std::size_t position) {
  return text.size() > position ? text.substr(position) : std::string_view();
}

}  // namespace kiv
