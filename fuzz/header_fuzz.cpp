// Header files: any bytes are parsed into the header model, which is then asked and listed.

#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>

#include "kiv/stream_diagnostics.h"
#include "tables/csv_names.h"
#include "trace/kiv_hdr.h"
#include "trace/xml_parser.h"

namespace kiv::fuzz {
namespace {

void parse(std::string_view document) {
  std::ostringstream messages;
  const int debug_level = static_cast<int>(document.size() % 2);
  stream_diagnostics faults(debug_level, messages, messages);
  XmlParser parser(faults);
  {
    kiv_hdr header(parser);
    header.read_document(document, "header");
    header.dump_entries();
    static_cast<void>(header.layout());
    for (int tag = -128; tag < 128; ++tag) {
      if (header.get_elem_size(tag, 0) < 0) std::abort();
    }
    const std::string name = safe_runid(header.runid());
    if (name.find('/') != std::string::npos || name.size() > 200) std::abort();
  }
  if (!parser.elements().empty()) std::abort();
}

}  // namespace
}  // namespace kiv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
  kiv::fuzz::parse({reinterpret_cast<const char*>(bytes), size});
  return 0;
}
