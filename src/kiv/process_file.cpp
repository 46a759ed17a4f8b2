#include "kiv/process_file.h"

#include "replay/kiv_reader.h"
#include "tables/kiv_tables.h"
#include "tables/run_output.h"
#include "trace/diagnostics.h"
#include "trace/kiv_hdr.h"
#include "trace/xml_parser.h"

namespace kiv {

int process_file(run_output& output, file_source& files, const std::string& dir,
                 const std::string& file, const trace_options& options, bool first) {
  diagnostics& faults = output.context.faults;
  XmlParser parser(faults);
  kiv_hdr header(parser);
  header.read_header(dir + "/" + file);  // what was read counts, however much that is
  header.dump_entries();

  kiv_reader reader(output.context, header, files);
  kiv_tables tables(reader, output, dir, options.description, first, options.size_limit);
  if (header.version() > 1) {
    faults.version_not_supported(header.version());
    return 2;
  }
  if (header.filetype() != "bin") return 1;

  reader.ReadEvents(tables);
  tables.write_end_tables();
  return 0;
}

}  // namespace kiv
