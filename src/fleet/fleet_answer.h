#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fleet/fleet_options.h"
#include "fleet/fleet_runs.h"
#include "report/table.h"

namespace kiv::fleet {

// What is asked of a fleet; the words of the command line and of JSON.
enum class question : std::uint8_t { summary, hosts, outliers, peaks, first_leaks, growth };
inline constexpr std::size_t question_count = 6;
inline constexpr std::array<std::string_view, question_count> question_names = {
    "summary", "hosts", "outliers", "peaks", "first_leaks", "growth"};

// The answer to one question as a table. A column without a title is for scripts alone, one without
// a name for people alone.
struct fleet_answer {
  question of;
  std::string title;
  std::vector<report::column> columns;
  std::vector<report::table_row> rows;
};

// Of programs and releases, their hosts, and the runs beyond a multiple of the median.
fleet_answer summary_of(const fleet_runs& runs);
fleet_answer hosts_of(const fleet_runs& runs);
fleet_answer outliers_of(const fleet_runs& runs, const fleet_options& options);

// By names, whose bytes the source adds up. Nothing, with `error` set, when it cannot be read.
std::optional<fleet_answer> peaks_of(store::run_source& source, const fleet_options& options,
                                     std::string& error);
std::optional<fleet_answer> first_leaks_of(store::run_source& source, const fleet_runs& runs,
                                           const fleet_options& options, std::string& error);
std::optional<fleet_answer> growth_of(store::run_source& source, const fleet_runs& runs,
                                      const fleet_options& options, std::string& error);

}  // namespace kiv::fleet
