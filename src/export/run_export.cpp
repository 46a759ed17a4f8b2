#include "export/run_export.h"

#include <algorithm>
#include <ostream>

#include "export/writers.h"
#include "report/printable.h"

namespace kiv::exports {
namespace {

// The largest sum that the readers of a format keep exactly.
std::uint64_t largest_sum(export_format format) {
  switch (format) {
    case export_format::collapsed:
      return UINT64_MAX;
    case export_format::speedscope:
      return std::uint64_t{1} << 53;  // numbers of JavaScript
    case export_format::pprof:
      return INT64_MAX;
  }
  return 0;
}

bool add_up_to(std::uint64_t largest, std::uint64_t& sum, std::uint64_t more) {
  if (more > largest - sum) return false;
  sum += more;
  return true;
}

bool fits(const run_export& what, std::string& error) {
  const std::uint64_t largest = largest_sum(what.options.format);
  for (const auto of : what.measures) {
    std::uint64_t bytes = 0, blocks = 0;
    for (const auto& named : what.traces) {
      for (std::size_t i = 0; i < named.kept.size(); ++i) {
        if (!named.kept[i]) continue;
        const amount counted = measured(named.trace->groups[i], of);
        if (add_up_to(largest, bytes, counted.bytes) && add_up_to(largest, blocks, counted.blocks))
          continue;
        error = "run " + quoted_name(what.run->name) + ": what is " + std::string(title_of(of)) +
                " adds up to more than " + std::string(name_of(what.options.format)) +
                " can hold, which is " + std::to_string(largest);
        return false;
      }
    }
  }
  return true;
}

}  // namespace

std::optional<export_format> find_format(std::string_view name) {
  const auto* at = std::ranges::find(format_names, name);
  if (at == format_names.end()) return std::nullopt;
  return static_cast<export_format>(at - format_names.begin());
}

std::string export_options::misuse() const {
  if (format == export_format::collapsed && of.size() != 1) {
    return "--format collapsed has one number a line: it takes one measure of --of";
  }
  if (format == export_format::pprof && blocks) {
    return "--blocks: --format pprof has bytes and blocks anyway";
  }
  if (format == export_format::pprof && ids) {
    return "--ids: --format pprof has the allocation id as a label anyway";
  }
  return {};
}

bool make_export(const run_profile& run, const export_options& options, run_export& into,
                 std::string& error) {
  report::group_filter filter;
  if (!filter.set(options.filter, run, error)) return false;
  into.run = &run;
  into.options = options;
  into.measures = options.of;
  if (options.of.empty()) {
    for (const auto name : report::measure_names) {
      into.measures.push_back(*report::find_measure(name));
    }
  }
  into.traces = named_traces(run, filter, into.names);
  return fits(into, error);
}

void write_export(std::ostream& out, const run_export& what) {
  switch (what.options.format) {
    case export_format::collapsed:
      return write_collapsed(out, what);
    case export_format::speedscope:
      return write_speedscope(out, what);
    case export_format::pprof:
      return write_pprof(out, what);
  }
}

}  // namespace kiv::exports
