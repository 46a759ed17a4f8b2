#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "profile/run_profile.h"
#include "report/group_filter.h"
#include "report/group_lists.h"
#include "report/measures.h"
#include "report/name_book.h"

namespace kiv::exports {

// The file formats of other tools.
enum class export_format : std::uint8_t { collapsed, speedscope, pprof };
inline constexpr std::size_t format_count = 3;

// The words of the command line, in the order of the enumeration.
inline constexpr std::array<std::string_view, format_count> format_names = {"collapsed",
                                                                            "speedscope", "pprof"};
inline std::string_view name_of(export_format format) {
  return format_names[static_cast<std::size_t>(format)];
}
std::optional<export_format> find_format(std::string_view name);

struct export_options {
  export_format format = export_format::collapsed;
  std::vector<report::measure> of = {};  // each once; none: all
  bool blocks = false;                   // their number in place of their bytes
  bool ids = false;                      // allocation id and colour as outermost frames
  report::filter_options filter = {};

  // Why these options do not go together, in words; empty when they do.
  std::string misuse() const;
};

// What is to be written. It looks into the run, which must outlive it.
struct run_export {
  const run_profile* run = nullptr;
  export_options options;
  std::vector<report::measure> measures;
  report::name_book names;
  std::vector<report::named_trace> traces;
};

// False, with `error` set, when a filter's expression cannot be read, the run has no such process,
// or a sum is larger than the format's readers can hold.
bool make_export(const run_profile& run, const export_options& options, run_export& into,
                 std::string& error);

// Writes piece by piece; `out` is no longer good when something could not be written.
void write_export(std::ostream& out, const run_export& what);

}  // namespace kiv::exports
