#include "kivdb/shared_options.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace kiv::db {
namespace {

constexpr std::size_t narrowest_terminal = 40;

template <class Names>
std::vector<std::string> words(const Names& names) {
  return {names.begin(), names.end()};
}

template <class Names>
std::string listed(const Names& names) {
  std::string list;
  for (const auto& name : names) list += (list.empty() ? "" : ", ") + std::string(name);
  return list;
}

// At commas; nothing for an empty text.
std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> parts;
  for (std::size_t at = 0; !text.empty() && at <= text.size();) {
    const std::size_t comma = std::min(text.find(',', at), text.size());
    parts.push_back(text.substr(at, comma - at));
    at = comma + 1;
  }
  return parts;
}

// Accepts words of a list, separated by commas.
command_options::check each_of(const std::vector<std::string>& known) {
  return [known](const std::string& text) {
    for (const auto& word : split(text)) {
      if (std::ranges::find(known, word) != known.end()) continue;
      return "'" + word + "' is none of " + listed(known);
    }
    return std::string();
  };
}

template <class Found>
void add_once(std::vector<Found>& all, Found next) {
  if (std::ranges::find(all, next) == all.end()) all.push_back(next);
}

}  // namespace

void output_options::add_to(command_options& command) {
  command.either_flag("--csv", csv_, "Print comma-separated values", "--json", json_, "Print JSON");
}

report::print_style output_options::style() const {
  report::print_style style;
  if (csv_) style.format = report::output_format::csv;
  if (json_) style.format = report::output_format::json;
  if (isatty(STDOUT_FILENO) == 0) return style;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col >= narrowest_terminal) {
    style.width = size.ws_col;
  }
  const char* term = std::getenv("TERM");
  style.color = std::getenv("NO_COLOR") == nullptr && term && std::string_view(term) != "dumb";
  return style;
}

void top_option::add_to(command_options& command) {
  command.count("--top", top_,
                "Only so many rows of a list (unless told a few for people, all for scripts)");
}

void add_filter(command_options& command, report::filter_options& filter) {
  const auto is_expression = [](const std::string& pattern) {
    std::string error;
    report::group_filter().set({pattern, {}, {}}, error);
    return error;
  };
  command.option("--focus", filter.focus,
                 "Only blocks with a name that this regular expression matches: a function of "
                 "the call path, line, id, colour, process or SQL statement",
                 is_expression);
  command.option("--ignore", filter.ignore, "No blocks with such a name", is_expression);
  command.option("--process", filter.process,
                 "Only blocks of this process: a session name or a process id");
}

void list_option::add_key_to(command_options& command) {
  command.choice("--by", by_, words(report::key_names),
                 "What to group by: " + listed(report::key_names));
}

void list_option::add_measure_to(command_options& command, const std::string& what_for) {
  command.choice("--of", of_, words(report::measure_names),
                 what_for + ": " + listed(report::measure_names));
}

void lists_option::add_to(command_options& command) {
  command.option("--by", by_, "What to group by: " + listed(report::key_names),
                 each_of(words(report::key_names)));
  command.option("--of", of_, "What to add up: " + listed(report::measure_names),
                 each_of(words(report::measure_names)));
}

std::vector<report::group_key> lists_option::by() const {
  std::vector<report::group_key> keys;
  for (const auto& name : split(by_)) add_once(keys, *report::find_key(name));
  return keys;
}

std::vector<report::measure> lists_option::of() const {
  std::vector<report::measure> measures;
  for (const auto& name : split(of_)) add_once(measures, *report::find_measure(name));
  return measures;
}

}  // namespace kiv::db
