#include "report/html_page.h"

#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "report/page_json.h"
#include "report/printable.h"
#include "util/embedded_text.h"

namespace kiv {

// The page but for its title and data (cmake/html_page.cmake).
std::span<const embedded_text> report_page();

}  // namespace kiv

namespace kiv::report {
namespace {

std::string html_text(std::string_view text) {
  std::string html;
  for (const char c : text) {
    switch (c) {
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '&':
        html += "&amp;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

std::string title_of(const page_data& page) {
  std::string title;
  for (const auto& run : page.runs) {
    title += title.empty() ? "" : " → ";
    title += shortened(printable(run.run->name), 100);
  }
  return title + " – kiv";
}

}  // namespace

void write_html_page(std::ostream& out, const page_data& page) {
  constexpr std::string_view title = "@TITLE@", data = "@DATA@";
  const std::string_view text = report_page().front().text;
  const std::size_t title_at = text.find(title), data_at = text.find(data);
  out << text.substr(0, title_at) << html_text(title_of(page));
  const std::size_t behind_title = title_at + title.size();
  out << text.substr(behind_title, data_at - behind_title);
  write_page_data(out, page);
  out << text.substr(data_at + data.size());
}

}  // namespace kiv::report
