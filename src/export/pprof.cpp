#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <limits>
#include <optional>
#include <ostream>

#include "export/group_order.h"
#include "export/gzip_buffer.h"
#include "export/pprof.pb.h"
#include "export/pprof_tables.h"
#include "export/run_export.h"
#include "export/writers.h"
#include "report/printable.h"

namespace kiv::exports {
namespace {

using report::group_key;
using report::measure;
using report::named_trace;

constexpr std::int64_t second = 1'000'000'000;

// Nanoseconds since 1970 of a time like "2023-11-14 22:13:20.005", which is local; nothing when it
// is none, or too far away to be counted so.
std::optional<std::int64_t> nanoseconds(const std::string& time) {
  std::tm local{};
  local.tm_isdst = -1;
  const char* rest = strptime(time.c_str(), "%Y-%m-%d %H:%M:%S", &local);
  if (!rest) return std::nullopt;
  const std::int64_t seconds = std::mktime(&local);
  if (seconds < 0 || seconds >= std::numeric_limits<std::int64_t>::max() / second) {
    return std::nullopt;
  }
  std::int64_t part = 0;
  if (*rest == '.') {
    std::int64_t unit = second;
    for (++rest; *rest >= '0' && *rest <= '9' && unit > 1; ++rest)
      part += (*rest - '0') * (unit /= 10);
  }
  return seconds * second + part;
}

// The parts of a profile in a message are the profile: what is repeated in them adds up.
class pprof_writer {
 public:
  pprof_writer(std::ostream& out, const run_export& what)
      : out_(out), what_(what), order_(what), tables_(what.names, piece_) {}

  void write() {
    add_sample_types();
    add_program();
    add_times();
    add_comments();
    for (std::size_t key = 0; key < report::key_count; ++key) {
      label_keys_[key] = tables_.text(report::key_names[key]);
    }
    for (const auto& named : what_.traces) add_samples(named);
    put_out();
  }

 private:
  void put_out() {
    piece_.SerializeToOstream(&out_);
    piece_.Clear();
  }

  void add_sample_types() {
    const measure first = what_.options.of.empty() ? measure::peak : what_.options.of.front();
    for (const auto of : what_.measures) {
      const std::string name(name_of(of));
      const auto add = [&](const char* what, const char* unit) {
        auto& type = *piece_.add_sample_type();
        type.set_type(tables_.text(name + what));
        type.set_unit(tables_.text(unit));
        return type.type();
      };
      add("_blocks", "count");
      const std::int64_t bytes = add("_bytes", "bytes");
      if (of == first) piece_.set_default_sample_type(bytes);
    }
  }

  void add_program() {
    const auto& traces = what_.run->traces;
    const bool same = !traces.empty() && std::ranges::all_of(traces, [&](const profile& trace) {
      return trace.program == traces.front().program;
    });
    auto& program = *piece_.add_mapping();
    program.set_id(1);
    program.set_filename(tables_.text(same ? traces.front().program : what_.run->name));
    program.set_has_functions(true);
    program.set_has_filenames(true);
    program.set_has_line_numbers(true);
  }

  void add_times() {
    std::optional<std::int64_t> start, end;
    for (const auto& trace : what_.run->traces) {
      const auto from = nanoseconds(trace.start), to = nanoseconds(trace.end);
      if (from) start = std::min(start.value_or(*from), *from);
      if (to) end = std::max(end.value_or(*to), *to);
    }
    if (start) piece_.set_time_nanos(*start);
    if (start && end && *end >= *start) piece_.set_duration_nanos(*end - *start);
  }

  void add_comments() {
    const auto add = [&](const std::string& text) { piece_.add_comment(tables_.text(text)); };
    add("run " + quoted_name(what_.run->name));
    if (what_.options.filter.is_on()) {
      add("only blocks that this filter leaves: " + what_.options.filter.in_words());
    }
    for (const auto& trace : what_.run->traces) {
      const std::string who = "trace " + std::to_string(trace.pid) + " (" + trace.program + "): ";
      if (trace.complete()) add(who + "complete");
      if (trace.from_rows) {
        add(who + "computed from CSV tables, which have no call paths and do not tell losses");
      }
      for (const auto& lost : trace.losses) {
        add(fmt::format("{}NOT COMPLETE: {} x {}{}", who, lost.count, lost.what,
                        lost.first.empty() ? "" : ", first: " + lost.first));
      }
      for (const auto& note : trace.notes) add(fmt::format("{}left out: {}", who, note));
    }
  }

  void add_samples(const named_trace& named) {
    const std::int64_t trace_key = tables_.text("trace"), kind_key = tables_.text("kind");
    const std::int64_t pid = tables_.text(std::to_string(named.trace->pid));
    const std::int64_t no_free = tables_.text("no-free");
    for (const auto i : order_.of(named)) {
      const block_group& group = named.trace->groups[i];
      values_.clear();
      for (const auto of : what_.measures) {
        const amount counted = measured(group, of);
        values_.push_back(static_cast<std::int64_t>(counted.blocks));
        values_.push_back(static_cast<std::int64_t>(counted.bytes));
      }
      if (std::ranges::all_of(values_, [](std::int64_t value) { return value == 0; })) continue;
      auto& sample = *piece_.add_sample();
      for (const auto value : values_) sample.add_value(value);
      add_locations(sample, number_of(named, group, group_key::path),
                    number_of(named, group, group_key::line));
      const auto label = [&](std::int64_t key, std::int64_t value) {
        auto& added = *sample.add_label();
        added.set_key(key);
        added.set_str(value);
      };
      for (const auto key :
           {group_key::id, group_key::color, group_key::process, group_key::query}) {
        if (key == group_key::query && group.query == 0) continue;
        label(label_keys_[static_cast<std::size_t>(key)],
              label_text(key, number_of(named, group, key)));
      }
      label(trace_key, pid);
      if (group.no_free) label(kind_key, no_free);
      if (++in_piece_ == samples_of_a_piece) {
        put_out();
        in_piece_ = 0;
      }
    }
  }

  std::int64_t label_text(group_key key, std::uint32_t number) {
    auto& known = label_texts_[static_cast<std::size_t>(key)];
    if (known.empty()) known.assign(what_.names.size(key), -1);
    if (known[number] < 0) known[number] = tables_.text(what_.names.name(key, number));
    return known[number];
  }

  // The innermost function stands at the source line that made the blocks.
  void add_locations(pprof::Sample& sample, std::uint32_t path, std::uint32_t line) {
    if (path == 0) {
      sample.add_location_id(tables_.location(pprof_tables::none, line));
      return;
    }
    if (callers_.empty()) callers_.assign(what_.names.size(group_key::function), 0);
    for (bool innermost = true; path != 0; innermost = false) {
      const auto [parent, function] = what_.names.path_node(path);
      path = parent;
      if (innermost) {
        sample.add_location_id(tables_.location(function, line));
        continue;
      }
      auto& known = callers_[function];
      if (known == 0) known = tables_.location(function, pprof_tables::none);
      sample.add_location_id(known);
    }
  }

  static constexpr std::size_t samples_of_a_piece = 256;

  std::ostream& out_;
  const run_export& what_;
  group_order order_;
  pprof::Profile piece_;
  std::size_t in_piece_ = 0;
  pprof_tables tables_;
  std::vector<std::int64_t> values_;
  std::array<std::int64_t, report::key_count> label_keys_{};
  std::array<std::vector<std::int64_t>, report::key_count> label_texts_;  // by number; -1: unknown
  std::vector<std::uint64_t> callers_;  // locations of functions without a line; 0: unknown
};

}  // namespace

void write_pprof(std::ostream& out, const run_export& what) {
  gzip_buffer buffer(out);
  std::ostream packed(&buffer);
  pprof_writer(packed, what).write();
  buffer.finish();
}

}  // namespace kiv::exports
