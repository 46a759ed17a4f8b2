#include "kiv/kiv_main.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <exception>
#include <iostream>
#include <span>

#include "kiv/dirhandler.h"
#include "kiv/options.h"
#include "kiv/process_file.h"
#include "kiv/stream_diagnostics.h"
#include "kiv/terminate.h"
#include "kiv/version.h"
#include "tables/run_output.h"
#include "trace/file_source.h"

namespace kiv {
namespace {

constexpr const char* header_pattern = "kivhdr";

// One run of the program: a directory's traces, a single trace, or both.
class batch_run {
 public:
  explicit batch_run(const run_options& options)
      : options_(options),
        faults_(options.debug_level, std::cout, std::cerr),
        context_(faults_),
        saved_(files_) {
    context_.data_sep = options.data_sep;
    context_.fun_sep = options.fun_sep;
  }

  void directory(const std::string& path) {
    dirhandler listing(path.c_str(), header_pattern);
    listing.read_dir();
    run_output output(context_, files_);
    bool first = true;
    for (const std::string& name : listing.names()) {
      faults_.trace_begins(name);
      const int result = process_file(output, disk_, path, name, of_trace(), first);
      if (result == 1) faults_.trace_failed();
      first = false;
    }
  }

  void single(const std::string& header_file) {
    run_output output(context_, files_);
    process_file(output, disk_, ".", header_file, of_trace(), true);
  }

 private:
  trace_options of_trace() const { return {options_.description, options_.size_limit}; }

  const run_options& options_;
  stream_diagnostics faults_;
  run_context context_;
  disk_files disk_;
  open_files files_;
  const saved_on_termination saved_;
};

void run(const run_options& options) {
  batch_run batch(options);
  if (options.directory) batch.directory(*options.directory);
  if (options.header_file) batch.single(*options.header_file);
}

// A standard stream that is closed would lend its number to the next file that is opened, and
// messages would end up in a table. Reading only, so that writing still fails.
void occupy_closed_streams() {
  int fd = -1;
  do {
    fd = open("/dev/null", O_RDONLY);
  } while (fd >= 0 && fd <= STDERR_FILENO);
  if (fd >= 0) close(fd);
}

void report_lost_messages() {
  std::cout.flush();
  if (!std::cout) std::cerr << "cannot write standard output\n";
}

}  // namespace

void set_up_process() {
  occupy_closed_streams();
  // A closed pipe or a file size limit then shows as a failed write, and the run goes on.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  tzset();
  std::ios_base::sync_with_stdio(false);
  // Debug listings run to millions of lines. Only a terminal wants each of them at once.
  if (isatty(STDERR_FILENO) == 0) {
    std::cerr.tie(nullptr);
    std::cerr.unsetf(std::ios_base::unitbuf);
  }
}

int kiv_main(int argc, const char* const* argv) {
  std::set_terminate(kiv_terminate_handler);
  const std::span<const char* const> all(argv, static_cast<std::size_t>(argc));
  const command_line line = parse_command_line(all.subspan(all.empty() ? 0 : 1));
  switch (line.what) {
    case command::nothing:
      break;
    case command::run:
      run(line.options);
      report_lost_messages();
      break;
    case command::usage:
      usage();
      break;
    case command::usage_and_banner:
      usage();
      print_version();
      break;
    case command::banner:
      print_version();
      break;
    case command::fail:
      return 1;
  }
  return 0;
}

}  // namespace kiv
