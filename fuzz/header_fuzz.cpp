// Header files: any bytes are parsed into the header model, which is then asked and listed.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "header/kiv_hdr.h"
#include "header/xml_parser.h"
#include "output/csv_file_sequence.h"
#include "quiet.h"
#include "reader/record_layout.h"
#include "settings.h"

namespace kiv::fuzz {
namespace {

void parse(const unsigned char* bytes, std::size_t size) {
  const int file = memfd_create("header", 0);
  if (file < 0 || write(file, bytes, size) != static_cast<ssize_t>(size)) std::abort();
  const std::string path = "/proc/self/fd/" + std::to_string(file);

  debug_level = size % 2;
  {
    XmlParser parser(startElement, endElement, dataElement, nullptr);
    kiv_hdr header(&parser, path.c_str(), "");
    header.read_header();
    header.dump_entries();
    std::ostringstream line;
    line << header;
    const record_layout layout(header);
    for (int tag = -128; tag < 128; ++tag) {
      if (header.get_elem_size(tag, 0) < 0) std::abort();
    }
    const std::string name = safe_runid(header.runid());
    if (name.find('/') != std::string::npos || name.size() > 200) std::abort();
  }
  if (!el_stack.empty()) std::abort();
  close(file);
}

}  // namespace
}  // namespace kiv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
  static const kiv::fuzz::quiet_streams quiet;
  kiv::fuzz::parse(bytes, size);
  return 0;
}
