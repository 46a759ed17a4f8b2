#include "export/pprof_tables.h"

#include <charconv>

#include "export/one_line.h"
#include "export/pprof.pb.h"

namespace kiv::exports {

using report::group_key;

// Only what the number and the file give back: "a.c:07" and "a.c:0" are texts.
source_place parse_line(std::string_view text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos || colon == 0) return {text};
  const std::string_view digits = text.substr(colon + 1);
  if (digits.empty() || digits[0] < '1' || digits[0] > '9') return {text};
  source_place place{text.substr(0, colon)};
  const char* end = digits.data() + digits.size();
  const auto [stop, failure] = std::from_chars(digits.data(), end, place.line);
  return failure == std::errc() && stop == end ? place : source_place{text};
}

pprof_tables::pprof_tables(const report::name_book& names, pprof::Profile& piece)
    : names_(names), piece_(piece) {
  text("");
}

std::int64_t pprof_tables::text(std::string_view name) {
  const auto [at, is_new] =
      texts_.try_emplace(one_line(name), static_cast<std::int64_t>(texts_.size()));
  if (is_new) piece_.add_string_table(at->first);
  return at->second;
}

std::uint64_t pprof_tables::function(std::uint32_t number, std::int64_t file) {
  const auto [at, is_new] = functions_.try_emplace({number, file}, functions_.size() + 1);
  if (is_new) {
    const std::int64_t name =
        text(number == none ? "(no call path)" : names_.name(group_key::function, number));
    auto& added = *piece_.add_function();
    added.set_id(at->second);
    added.set_name(name);
    added.set_system_name(name);
    added.set_filename(file);
  }
  return at->second;
}

std::uint64_t pprof_tables::location(std::uint32_t function_number, std::uint32_t line) {
  const auto [at, is_new] = locations_.try_emplace({function_number, line}, locations_.size() + 1);
  if (is_new) {
    const std::string name = line == none ? "" : names_.name(group_key::line, line);
    const source_place place = parse_line(name);
    auto& added = *piece_.add_location();
    added.set_id(at->second);
    added.set_mapping_id(1);
    auto& stands = *added.add_line();
    stands.set_function_id(function(function_number, text(place.file)));
    stands.set_line(place.line);
  }
  return at->second;
}

}  // namespace kiv::exports
