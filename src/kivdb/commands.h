#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace kiv::db {

// A command of the program: what the command line knows of it, and what carries it out and gives
// the exit status.
struct command {
  CLI::App* app = nullptr;
  std::function<int()> run;
};

// One file each; they add the command to the program.
command add_import(CLI::App& program);
command add_report(CLI::App& program);
command add_tree(CLI::App& program);
command add_diff(CLI::App& program);
command add_html(CLI::App& program);
command add_trend(CLI::App& program);
command add_runs(CLI::App& program);
command add_forget(CLI::App& program);
command add_show(CLI::App& program);
command add_views(CLI::App& program);
command add_sql(CLI::App& program);

}  // namespace kiv::db
