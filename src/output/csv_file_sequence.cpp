#include "output/csv_file_sequence.h"

namespace kiv {

int csv_file_sequence::curr_sequence(const std::string& name, bool increment) {
  const auto [number, is_new] = numbers_.try_emplace(name, 1);
  if (increment && !is_new) ++number->second;
  return number->second;
}

std::string csv_file_sequence::get_sequence(const std::string& name, const std::string& runid) {
  return generate_file_name(name, runid, curr_sequence(name, false));
}

std::string csv_file_sequence::next_sequence(const std::string& name, const std::string& runid) {
  return generate_file_name(name, runid, curr_sequence(name, true));
}

std::string csv_file_sequence::generate_file_name(const std::string& name, const std::string& runid,
                                                  int number) const {
  return "kiv." + safe_runid(runid) + "." + name + "." + std::to_string(number) + "." + extension_;
}

std::string safe_runid(std::string_view runid) {
  constexpr std::size_t max_length = 200;  // leaves room for the rest of a file name
  std::string safe(runid.substr(0, max_length));
  for (char& letter : safe) {
    const auto byte = static_cast<unsigned char>(letter);
    if (letter == '/' || letter == '\'' || byte < 0x20 || byte == 0x7f) letter = '_';
  }
  return safe;
}

}  // namespace kiv
