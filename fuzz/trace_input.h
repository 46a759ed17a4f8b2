#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kiv::fuzz {

// A trace made of any bytes. The first ones say how the header describes the records, the rest are
// the records. Addresses and numbers have one width each, decodable or not.
struct trace_input {
  static constexpr std::size_t prelude_size = 4;

  bool big_endian = false;
  bool listed = false;             // at debug level 2
  bool two_files = false;          // cut in the middle
  bool small_files = false;        // tables are split after a few rows
  std::uint8_t address_width = 4;  // below 10
  std::uint8_t number_width = 4;   // below 10
  char without_entry = '\0';       // this record type is not declared
  std::string_view records;

  // Missing bytes count as 0.
  static trace_input from(std::string_view bytes);
  std::string prelude() const;

  // The header of a trace with these data files, by their full paths.
  std::string header(std::string_view first_file, std::string_view second_file) const;
};

}  // namespace kiv::fuzz
