#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "profile/run_profile.h"

namespace re2 {
class RE2;
}

namespace kiv::report {

// Which blocks an answer is about, as the command line says it; nothing set: about all.
struct filter_options {
  std::optional<std::string> focus = {}, ignore = {};  // regular expressions
  std::optional<std::string> process = {};             // a session name or a process id

  bool is_on() const { return focus || ignore || process; }
  // "focus "x", process "y"", printable; empty when nothing is set.
  std::string in_words() const;
};

// Decides for every group of blocks whether it counts. The expressions are looked for, anywhere in
// the text, in each name that a group has: every function of its call path as "object:function",
// its source line, its id, its colour as "id / colour", its process and its SQL statement. A group
// counts if one of them holds `focus` and none holds `ignore`, and if it belongs to the process.
class group_filter {
 public:
  group_filter();
  ~group_filter();

  // False, with `error` set, when an expression cannot be read.
  bool set(const filter_options& options, std::string& error);
  // The same for one run, which must have the process that is asked for.
  bool set(const filter_options& options, const run_profile& run, std::string& error);

  // For each group of a trace.
  std::vector<bool> kept(const profile& trace) const;
  // Whether one of the traces has the process that is asked for; true when none is asked for.
  bool knows_process(const run_profile& run) const;

 private:
  bool is_process(const profile_process& process) const;
  // For each group, whether one of its names holds the expression.
  static std::vector<bool> matches(const profile& trace, const re2::RE2& expression);

  std::unique_ptr<re2::RE2> focus_, ignore_;
  std::optional<std::string> process_;
};

}  // namespace kiv::report
