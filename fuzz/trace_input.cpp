#include "trace_input.h"

#include <algorithm>

namespace kiv::fuzz {
namespace {

// The fields of each record type: 'n' numbers, 'p' addresses, 's' texts. 'c' is the number of
// colours, of which each has a row even when nothing else is known of it: a single byte, or inputs
// of some bytes would write gigabytes.
struct record_type {
  char tag;
  std::string_view fields;
};
constexpr record_type record_types[] = {
    {'H', "ps"},   {'a', "nnppnnp"}, {'n', "nnpnnp"}, {'f', "nnpp"}, {'r', "nnppnnp"},
    {'S', "pn"},   {'G', "pp"},      {'R', "nnpcs"},  {'c', "ns"},   {'F', "npnn"},
    {'Z', "npnn"}, {'I', "nnnn"},    {'O', ""},       {'s', "nn"},   {'P', "nns"},
    {'X', "n"},    {'B', "nns"},     {'L', "n"},      {'p', "nn"},   {'l', "nns"},
    {'b', "nns"},  {'i', "nnnps"},   {'o', "nnns"},   {'Q', "nns"},  {'q', "nn"},
    {'C', "s"},    {'T', "nn"},      {'M', "nnn"},    {'y', "pnns"}, {'D', "pnnnnn"},
    {'Y', "ps"},   {'d', "pnn"},
};

constexpr std::uint8_t width_limit = 10;

}  // namespace

trace_input trace_input::from(std::string_view bytes) {
  const auto byte = [bytes](std::size_t i) {
    return i < bytes.size() ? static_cast<std::uint8_t>(bytes[i]) : std::uint8_t{0};
  };
  trace_input input;
  input.big_endian = (byte(0) & 1) != 0;
  input.listed = (byte(0) & 2) != 0;
  input.two_files = (byte(0) & 4) != 0;
  input.small_files = (byte(0) & 8) != 0;
  input.address_width = byte(1) % width_limit;
  input.number_width = byte(2) % width_limit;
  input.without_entry = static_cast<char>(byte(3));
  input.records = bytes.substr(std::min(bytes.size(), prelude_size));
  return input;
}

std::string trace_input::prelude() const {
  const int flags =
      (big_endian ? 1 : 0) + (listed ? 2 : 0) + (two_files ? 4 : 0) + (small_files ? 8 : 0);
  return {static_cast<char>(flags), static_cast<char>(address_width),
          static_cast<char>(number_width), without_entry};
}

std::string trace_input::header(std::string_view first_file, std::string_view second_file) const {
  std::string out = "<kiv><version v='1'/><filetype v='bin'/><pid v='7'/><runid v='R'/>";
  out += big_endian ? "<endianess v='B'/>" : "<endianess v='l'/>";
  for (const record_type& type : record_types) {
    if (type.tag == without_entry) continue;
    out += "<entry tag='";
    out += type.tag;
    out += "' name='' desc=''>";
    for (const char kind : type.fields) {
      const std::uint8_t width = kind == 'p'   ? address_width
                                 : kind == 'n' ? number_width
                                               : std::min<std::uint8_t>(number_width, 1);
      out += "<elem n='' s='" + std::to_string(width) + "'/>";
    }
    out += "</entry>";
  }
  for (const std::string_view file : {first_file, second_file}) {
    out += "<kivfile><file v='" + std::string(file) + "'/><size v='2147483647'/></kivfile>";
  }
  return out + "</kiv>";
}

}  // namespace kiv::fuzz
