#include "report/group_filter.h"

#include <re2/re2.h>

#include <string_view>

#include "report/printable.h"

namespace kiv::report {
namespace {

std::unique_ptr<re2::RE2> compiled(const std::string& pattern, std::string& error) {
  RE2::Options options;
  options.set_log_errors(false);
  auto expression = std::make_unique<re2::RE2>(pattern, options);
  if (expression->ok()) return expression;
  error = quoted_name(pattern) + " is no regular expression: " + printable(expression->error());
  return nullptr;
}

// For each entry of a list, whether its text holds the expression.
template <class List, class Text>
std::vector<bool> matches_of(const List& list, const re2::RE2& expression, Text text) {
  std::vector<bool> found;
  found.reserve(list.size());
  for (const auto& entry : list) {
    found.push_back(re2::RE2::PartialMatch(std::string_view(text(entry)), expression));
  }
  return found;
}

bool at(const std::vector<bool>& found, std::uint32_t place) {
  return place < found.size() && found[place];
}

}  // namespace

std::string filter_options::in_words() const {
  std::string words;
  const auto add = [&](std::string_view what, const std::optional<std::string>& value) {
    if (!value) return;
    words += (words.empty() ? "" : ", ") + std::string(what) + ' ' + quoted_name(*value);
  };
  add("focus", focus);
  add("ignore", ignore);
  add("process", process);
  return words;
}

group_filter::group_filter() = default;
group_filter::~group_filter() = default;

bool group_filter::set(const filter_options& options, std::string& error) {
  if (options.focus && !(focus_ = compiled(*options.focus, error))) return false;
  if (options.ignore && !(ignore_ = compiled(*options.ignore, error))) return false;
  process_ = options.process;
  return true;
}

bool group_filter::is_process(const profile_process& process) const {
  return process.name == *process_ || std::to_string(process.pid) == *process_;
}

std::vector<bool> group_filter::matches(const profile& trace, const re2::RE2& expression) {
  const auto itself = [](const std::string& text) -> const std::string& { return text; };
  const auto ids = matches_of(trace.ids, expression,
                              [](const auto& id) -> const std::string& { return id.name; });
  // Composed texts live in `joined` while they are looked at.
  std::string joined;
  const auto colors =
      matches_of(trace.colors, expression, [&](const profile_color& color) -> const std::string& {
        joined = color.id < trace.ids.size() ? trace.ids[color.id].name : std::string();
        return (joined += " / ") += color.name;
      });
  const auto functions = matches_of(trace.functions, expression,
                                    [&](const profile_function& function) -> const std::string& {
                                      joined = function.object;
                                      if (!joined.empty()) joined += ':';
                                      return joined += function.name;
                                    });
  const auto lines = matches_of(trace.lines, expression, itself);
  const auto queries = matches_of(trace.queries, expression, itself);
  const auto processes =
      matches_of(trace.processes, expression,
                 [](const auto& process) -> const std::string& { return process.name; });
  std::vector<bool> paths(1, false);
  for (std::size_t i = 1; i < trace.paths.size(); ++i) {
    paths.push_back(at(functions, trace.paths[i].function) || at(paths, trace.paths[i].parent));
  }
  std::vector<bool> found;
  found.reserve(trace.groups.size());
  for (std::size_t i = 0; i < trace.groups.size(); ++i) {
    const group_names group = trace.groups.names(i);
    found.push_back(at(ids, group.id) || at(colors, group.color) || at(lines, group.line) ||
                    at(paths, group.path) || at(processes, group.process) ||
                    at(queries, group.query));
  }
  return found;
}

bool group_filter::set(const filter_options& options, const run_profile& run, std::string& error) {
  if (!set(options, error)) return false;
  if (knows_process(run)) return true;
  error = "run " + quoted_name(run.name) + " has no process " + quoted_name(*options.process);
  return false;
}

std::vector<bool> group_filter::kept(const profile& trace) const {
  std::vector<bool> kept(trace.groups.size(), true);
  if (focus_) kept = matches(trace, *focus_);
  if (ignore_) {
    const auto dropped = matches(trace, *ignore_);
    for (std::size_t i = 0; i < kept.size(); ++i) kept[i] = kept[i] && !dropped[i];
  }
  if (process_) {
    for (std::size_t i = 0; i < kept.size(); ++i) {
      const std::uint32_t place = trace.groups.names(i).process;
      kept[i] = kept[i] && place < trace.processes.size() && is_process(trace.processes[place]);
    }
  }
  return kept;
}

bool group_filter::knows_process(const run_profile& run) const {
  if (!process_) return true;
  for (const auto& trace : run.traces) {
    for (const auto& process : trace.processes) {
      if (is_process(process)) return true;
    }
  }
  return false;
}

}  // namespace kiv::report
