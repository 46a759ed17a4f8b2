#pragma once

#include <iosfwd>

namespace kiv::exports {

struct run_export;

// One for each format.
void write_collapsed(std::ostream& out, const run_export& what);
void write_speedscope(std::ostream& out, const run_export& what);
void write_pprof(std::ostream& out, const run_export& what);

}  // namespace kiv::exports
