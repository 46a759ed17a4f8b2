#pragma once

#include "kivdb/command_options.h"

namespace kiv::db {

// One file each; they add the command to the program.
void add_export(program_options& program);
void add_import(program_options& program);
void add_report(program_options& program);
void add_tree(program_options& program);
void add_diff(program_options& program);
void add_html(program_options& program);
void add_trend(program_options& program);
void add_runs(program_options& program);
void add_forget(program_options& program);
void add_fleet(program_options& program);
void add_show(program_options& program);
void add_views(program_options& program);
void add_schema(program_options& program);
void add_setup(program_options& program);
void add_prune(program_options& program);
void add_sql(program_options& program);

}  // namespace kiv::db
