#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "kivdb/command_options.h"
#include "report/group_filter.h"
#include "report/measures.h"
#include "report/table.h"

namespace kiv::db {

// --csv and --json, of every command.
class output_options {
 public:
  void add_to(command_options& command);
  report::print_style style() const;

 private:
  bool csv_ = false, json_ = false;
};

// --top: how many rows; unless it is given, a few for people and all for scripts.
class top_option {
 public:
  void add_to(command_options& command);
  std::optional<std::size_t> given() const { return top_; }
  std::size_t for_people() const { return top_.value_or(10); }

 private:
  std::optional<std::size_t> top_;
};

// --focus, --ignore and --process.
void add_filter(command_options& command, report::filter_options& filter);

// --by and --of with one value each.
class list_option {
 public:
  void add_key_to(command_options& command);
  void add_measure_to(command_options& command, const std::string& what_for);
  void set_measure(report::measure of) { of_ = report::name_of(of); }
  report::group_key by() const { return *report::find_key(by_); }
  report::measure of() const { return *report::find_measure(of_); }

 private:
  std::string by_ = "line", of_ = "leaked";
};

// --by and --of with several values, separated by commas.
class lists_option {
 public:
  void add_to(command_options& command);
  std::vector<report::group_key> by() const;  // each once; empty when not given
  std::vector<report::measure> of() const;

 private:
  std::string by_, of_;
};

}  // namespace kiv::db
