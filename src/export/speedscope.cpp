#include <algorithm>
#include <ostream>
#include <span>

#include "export/stack_tree.h"
#include "export/writers.h"
#include "report/json_writer.h"

namespace kiv::exports {
namespace {

using report::measure;

// What one process of one trace holds in one stack.
struct weighted_stack {
  std::uint32_t process;  // place in the trace's list
  std::uint32_t rank;     // of the stack, in the order of the frames' texts
  std::uint64_t weight;
};

class speedscope_writer {
 public:
  speedscope_writer(std::ostream& out, const run_export& what)
      : what_(what),
        json_(out),
        stacks_(what, [](std::string_view name) { return std::string(name); }) {
    std::vector<std::vector<std::uint32_t>> stacks(what.traces.size());
    for (std::size_t t = 0; t < what.traces.size(); ++t) {
      const auto& named = what.traces[t];
      for (std::size_t i = 0; i < named.kept.size(); ++i) {
        const block_group& group = named.trace->groups[i];
        const bool shown = named.kept[i] && std::ranges::any_of(what.measures, [&](measure of) {
                             return weight_of(group, of) > 0;
                           });
        stacks[t].push_back(shown ? stacks_.stack_of(named, group) : 0);
      }
    }
    frame_ranks_ = stacks_.ranks_of_frames();
    std::vector<std::uint32_t> rank_of(stacks_.size(), 0);
    for (const auto& place : stacks_.in_order()) {
      rank_of[place.stack] = static_cast<std::uint32_t>(by_rank_.size());
      by_rank_.push_back(place.stack);
    }
    for (auto& of_trace : stacks) {
      for (auto& stack : of_trace) stack = rank_of[stack];
    }
    ranks_ = std::move(stacks);
  }

  void write() {
    json_.begin_object();
    text("$schema", "https://www.speedscope.app/file-format-schema.json");
    text("exporter", "kivdb");
    const auto& filter = what_.options.filter;
    text("name", what_.run->name + (filter.is_on() ? ", only " + filter.in_words() : ""));
    json_.key("shared");
    json_.begin_object();
    json_.key("frames");
    json_.begin_array();
    std::vector<std::uint32_t> in_order(frame_ranks_.size());
    for (std::uint32_t i = 0; i < in_order.size(); ++i) in_order[frame_ranks_[i]] = i;
    for (const auto frame : in_order) {
      json_.begin_object();
      text("name", stacks_.frame(frame));
      json_.end_object();
    }
    json_.end_array();
    json_.end_object();
    json_.key("profiles");
    json_.begin_array();
    for (const auto of : what_.measures) write_measure(of);
    json_.end_array();
    json_.end_object();
    json_.end_document();
  }

 private:
  void text(std::string_view key, std::string_view value) {
    json_.key(key);
    json_.text(value);
  }
  void number(std::string_view key, std::uint64_t value) {
    json_.key(key);
    json_.number(value);
  }

  std::uint64_t weight_of(const block_group& group, measure of) const {
    const amount counted = measured(group, of);
    return what_.options.blocks ? counted.blocks : counted.bytes;
  }

  // A measure of which there is nothing has one profile all the same, which says so.
  void write_measure(measure of) {
    bool any = false;
    for (std::size_t t = 0; t < what_.traces.size(); ++t) {
      const auto held = held_in(t, of);
      for (std::size_t from = 0, to = 0; from < held.size(); from = to) {
        while (to < held.size() && held[to].process == held[from].process) ++to;
        write_profile(title(of) + ": " + process_name(*what_.traces[t].trace, held[from].process),
                      std::span(held).subspan(from, to - from));
        any = true;
      }
    }
    if (!any) write_profile(title(of) + ": nothing", {});
  }

  std::vector<weighted_stack> held_in(std::size_t t, measure of) const {
    const auto& named = what_.traces[t];
    std::vector<weighted_stack> held;
    for (std::size_t i = 0; i < named.kept.size(); ++i) {
      if (!named.kept[i]) continue;
      const block_group& group = named.trace->groups[i];
      const std::uint64_t weight = weight_of(group, of);
      if (weight == 0) continue;
      const std::uint32_t process =
          group.process < named.trace->processes.size() ? group.process : 0;
      held.push_back({process, ranks_[t][i], weight});
    }
    std::ranges::sort(held, [](const weighted_stack& a, const weighted_stack& b) {
      return a.process != b.process ? a.process < b.process : a.rank < b.rank;
    });
    return joined(std::move(held));
  }

  static std::vector<weighted_stack> joined(std::vector<weighted_stack> held) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < held.size(); ++i) {
      if (kept > 0 && held[kept - 1].process == held[i].process &&
          held[kept - 1].rank == held[i].rank) {
        held[kept - 1].weight += held[i].weight;
      } else {
        held[kept++] = held[i];
      }
    }
    held.resize(kept);
    return held;
  }

  std::string title(measure of) const {
    return std::string(title_of(of)) + (what_.options.blocks ? ", blocks" : "");
  }

  static std::string process_name(const profile& trace, std::uint32_t process) {
    std::string name = "unknown process";
    if (process < trace.processes.size()) {
      name =
          trace.processes[process].name + " (" + std::to_string(trace.processes[process].pid) + ')';
    }
    name += ", trace " + std::to_string(trace.pid);
    if (!trace.losses.empty()) name += ", NOT COMPLETE";
    if (trace.from_rows) name += ", computed from CSV tables";
    return name;
  }

  void write_profile(const std::string& name, std::span<const weighted_stack> held) {
    std::uint64_t sum = 0;
    for (const auto& one : held) sum += one.weight;
    json_.begin_object();
    text("type", "sampled");
    text("name", name);
    text("unit", what_.options.blocks ? "none" : "bytes");
    number("startValue", 0);
    number("endValue", sum);
    json_.key("samples");
    json_.begin_array();
    for (const auto& one : held) {
      json_.begin_array();
      for (const auto frame : stacks_.frames_of(by_rank_[one.rank])) {
        json_.number(std::uint64_t{frame_ranks_[frame]});
      }
      json_.end_array();
    }
    json_.end_array();
    json_.key("weights");
    json_.begin_array();
    for (const auto& one : held) json_.number(one.weight);
    json_.end_array();
    json_.end_object();
  }

  const run_export& what_;
  report::json_writer json_;
  stack_tree stacks_;
  std::vector<std::uint32_t> frame_ranks_;         // their numbers in the document
  std::vector<std::uint32_t> by_rank_;             // the stacks in order
  std::vector<std::vector<std::uint32_t>> ranks_;  // of each trace, for each group
};

}  // namespace

void write_speedscope(std::ostream& out, const run_export& what) {
  speedscope_writer(out, what).write();
}

}  // namespace kiv::exports
