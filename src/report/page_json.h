#pragma once

#include <iosfwd>

#include "report/page_data.h"
#include "report/print_report.h"

namespace kiv::report {

// How a run is written whose names a page shows. It looks into `names`.
json_run_style page_style(shown_names& names);

// As one line of JSON that can stand in a page.
void write_page_data(std::ostream& out, const page_data& page);

}  // namespace kiv::report
