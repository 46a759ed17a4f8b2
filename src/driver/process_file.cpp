#include "driver/process_file.h"

#include <iostream>
#include <string>

#include "header/kiv_hdr.h"
#include "header/xml_parser.h"
#include "reader/kiv_reader.h"

namespace kiv {

int process_file(csv_file_sequence* seq, sql_script* script, const char* dir, const char* file,
                 const char* description, bool first, int max) {
  const std::string path = std::string(dir) + "/" + file;
  XmlParser parser(startElement, endElement, dataElement, nullptr);
  kiv_reader reader(&parser, seq, script, dir, path.c_str(), description, first, max);

  const kiv_hdr& header = reader.header();
  if (header.version() > 1) {
    std::cout << "header version \" " << header.version() << " not supported \n";
    return 2;
  }
  if (header.filetype() != "bin") return 1;

  const std::uint64_t records = reader.ReadEvents();
  reader.dump_proc_db(records);
  reader.dump_hash_db();
  reader.dump_malid_db(records);
  reader.dump_query_db();
  reader.dump_runid_db();
  reader.dump_object_db();
  return 0;
}

}  // namespace kiv
