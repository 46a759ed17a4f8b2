#pragma once

#include <iosfwd>

#include "report/page_data.h"

namespace kiv::report {

// The whole page, which needs nothing else and asks nothing from elsewhere.
void write_html_page(std::ostream& out, const page_data& page);

}  // namespace kiv::report
