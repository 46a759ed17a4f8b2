#include "profile/profile_trace.h"

#include <filesystem>

#include "profile/profiler.h"
#include "profile/trace_losses.h"
#include "replay/kiv_reader.h"
#include "trace/file_source.h"
#include "trace/kiv_hdr.h"
#include "trace/xml_parser.h"

namespace kiv {

namespace {

namespace fs = std::filesystem;

// Traces are moved and copied after they were recorded.
class files_beside_header final : public disk_files {
 public:
  explicit files_beside_header(const std::string& header_path)
      : directory_(fs::path(header_path).parent_path()) {}

  std::optional<std::int64_t> open(const std::string& path) override {
    if (const auto size = disk_files::open(path)) return size;
    return disk_files::open((directory_ / fs::path(path).filename()).string());
  }

 private:
  fs::path directory_;
};

}  // namespace

bool profile_trace(const std::string& header_path, profile& into, std::string& error) {
  trace_losses losses;
  XmlParser parser(losses);
  kiv_hdr header(parser);
  const int result = header.read_header(header_path);
  if (result == 3) {
    error = header_path + ": cannot be opened";
    return false;
  }
  if (header.version() > 1) {
    error =
        header_path + ": header version " + std::to_string(header.version()) + " is not supported";
    return false;
  }
  if (header.filetype() != "bin") {
    error = header_path + ": no header of a trace";
    return false;
  }

  run_context context(losses);
  files_beside_header files(header_path);
  kiv_reader reader(context, header, files, kiv_reader::row_books::left_out);
  losses.follow(reader);
  profiler observer(reader);
  reader.ReadEvents(observer);
  observer.finish(into);
  into.losses = losses.found();
  return true;
}

}  // namespace kiv
