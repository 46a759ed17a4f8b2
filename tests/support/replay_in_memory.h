#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "replay/kiv_reader.h"
#include "support/sparing_files.h"
#include "support/trace_builder.h"
#include "trace/diagnostics.h"
#include "trace/file_source.h"
#include "trace/kiv_hdr.h"
#include "trace/xml_parser.h"

namespace kiv::test {

// The replay of a trace that was never written to a disk, through the shortest windows. The trace
// must outlive it.
class replay_in_memory {
 public:
  explicit replay_in_memory(trace& t, diagnostics& faults)
      : context(faults), parser_(faults), header_(parser_) {
    for (std::size_t i = 0; i < t.file_count(); ++i) {
      const std::string& bytes = t.data(i);
      files_.add("./" + t.data_name(i),
                 {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    }
    header_.read_document(t.header("."), "header");
    reader_.emplace(context, header_, windows_);
  }

  kiv_reader& reader() { return *reader_; }

  run_context context;

 private:
  XmlParser parser_;
  kiv_hdr header_;
  memory_files files_;
  sparing_files windows_{files_};
  std::optional<kiv_reader> reader_;
};

}  // namespace kiv::test
