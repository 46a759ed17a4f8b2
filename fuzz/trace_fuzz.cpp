// Whole traces: any bytes as the records of a trace, replayed from memory, a window at a time. The
// tables are put together and thrown away: their directory does not exist.

#include <cstdlib>
#include <sstream>
#include <string>

#include "kiv/stream_diagnostics.h"
#include "replay/kiv_reader.h"
#include "replay/observer.h"
#include "support/sparing_files.h"
#include "tables/kiv_tables.h"
#include "tables/run_output.h"
#include "trace/file_source.h"
#include "trace/kiv_hdr.h"
#include "trace/xml_parser.h"
#include "trace_input.h"

namespace kiv::fuzz {
namespace {

const std::string nowhere = "/nonexistent";

std::span<const unsigned char> as_bytes(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

// Has calls applied many at once.
class without_calls : public replay_observer {
 public:
  bool follows_calls() const override { return false; }
};

void replay(const trace_input& input) {
  const std::size_t cut = input.two_files ? input.records.size() / 2 : input.records.size();
  memory_files files;
  files.add("first", as_bytes(input.records.substr(0, cut)));
  files.add("second", as_bytes(input.records.substr(cut)));

  std::ostringstream messages;
  stream_diagnostics faults(input.listed ? 2 : 0, messages, messages);
  run_context context(faults);
  open_files written;
  run_output output(context, written);
  XmlParser parser(faults);
  kiv_hdr header(parser);
  if (header.read_document(input.header("first", "second"), "header") != 0) std::abort();
  test::sparing_files windows(files);
  kiv_reader reader(context, header, windows);
  constexpr int small = 2000, unlimited = 1 << 30;
  kiv_tables tables(reader, output, nowhere, "", true, input.small_files ? small : unlimited);
  reader.ReadEvents(tables);
  tables.write_end_tables();

  run_context again(faults);
  without_calls nobody;
  kiv_reader(again, header, windows).ReadEvents(nobody);
}

}  // namespace
}  // namespace kiv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
  kiv::fuzz::replay(kiv::fuzz::trace_input::from({reinterpret_cast<const char*>(bytes), size}));
  return 0;
}
