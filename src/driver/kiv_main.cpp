#include "driver/kiv_main.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <exception>
#include <iostream>
#include <span>

#include "driver/dirhandler.h"
#include "driver/options.h"
#include "driver/process_file.h"
#include "driver/terminate.h"
#include "driver/version.h"
#include "output/csv_file_sequence.h"
#include "output/sql_script.h"
#include "settings.h"

namespace kiv {
namespace {

constexpr const char* header_pattern = "kivhdr";
constexpr const char* table_extension = "csv";
constexpr const char* script_extension = "sql";

void run_directory(const run_options& options) {
  const char* directory = options.directory->c_str();
  dirhandler listing(directory, header_pattern);
  listing.read_dir();
  csv_file_sequence sequence(table_extension);
  sql_script script(script_extension);
  bool first = true;
  for (const std::string& name : listing.names()) {
    std::cout << "Processing: " << name << std::endl;
    const int result = process_file(&sequence, &script, directory, name.c_str(),
                                    options.description.c_str(), first, options.size_limit);
    if (result == 1) std::cout << ">>Processing failed...\n";
    first = false;
  }
}

void run_single(const run_options& options) {
  csv_file_sequence sequence(table_extension);
  sql_script script(script_extension);
  process_file(&sequence, &script, ".", options.header_file->c_str(), options.description.c_str(),
               true, options.size_limit);
}

void run(const run_options& options) {
  debug_level = options.debug_level;
  data_sep = options.data_sep;
  fun_sep = options.fun_sep;
  if (options.directory) run_directory(options);
  if (options.header_file) run_single(options);
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
