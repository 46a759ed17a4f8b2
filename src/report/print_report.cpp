#include "report/print_report.h"

namespace kiv::report {

void print_reports(std::ostream& out, const std::vector<run_report>& reports,
                   const print_style& style, std::optional<std::size_t> top) {
  switch (style.format) {
    case output_format::terminal:
      return print_reports_as_text(out, reports, style, top);
    case output_format::csv:
      return print_reports_as_csv(out, reports);
    case output_format::json:
      return print_reports_as_json(out, reports);
  }
}

}  // namespace kiv::report
