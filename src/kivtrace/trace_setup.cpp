#include "kivtrace/trace_setup.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <ctime>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

#include "util/directory_name.h"

namespace kiv {
namespace {

void demand(bool holds, const char* what) {
  if (!holds) throw std::invalid_argument(what);
}

std::string text_or(const char* given, std::string_view otherwise) {
  return std::string(given != nullptr ? given : otherwise);
}

std::string host_name() {
  utsname machine{};
  return uname(&machine) == 0 ? machine.nodename : "";
}

// "./" and the last part of the path.
std::string relative_to_parent(const std::string& directory) {
  const std::string last = directory_name(directory);
  return last.empty() ? directory : "./" + last;
}

trace_identity identity_of(const kiv_trace_options& given) {
  demand(given.run_id != nullptr && *given.run_id != '\0', "a trace needs a run id");
  demand(given.pid >= 0, "a pid below 0");
  demand(given.m_entry_size >= 0 && given.mem_block_size >= 0 && given.m_group_size >= 0,
         "an allocator's size below 0");
  const bool has_start = given.start_secs != 0 || given.start_nsecs != 0;
  trace_identity made;
  made.run_id = given.run_id;
  made.pid = given.pid != 0 ? given.pid : getpid();
  made.program = text_or(given.program, program_invocation_short_name);
  made.user = text_or(given.user, "");
  made.environment = text_or(given.environment, "");
  made.account = text_or(given.account, "");
  made.host = given.host != nullptr ? given.host : host_name();
  made.start = has_start ? moment{given.start_secs, given.start_nsecs} : system_time();
  made.m_entry_size = given.m_entry_size;
  made.mem_block_size = given.mem_block_size;
  made.m_group_size = given.m_group_size;
  return made;
}

trace_writer::options writing_of(const kiv_trace_options& given) {
  constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
  demand(given.directory != nullptr && *given.directory != '\0', "a trace needs a directory");
  trace_writer::options made;
  made.directory = given.directory;
  made.recorded_directory = given.recorded_directory != nullptr && *given.recorded_directory != '\0'
                                ? given.recorded_directory
                                : relative_to_parent(made.directory);
  if (given.base_name != nullptr) made.base_name = given.base_name;
  demand(made.base_name.find('/') == std::string::npos, "a base name with a slash");
  demand(given.byte_order >= KIV_TRACE_NATIVE_ORDER && given.byte_order <= KIV_TRACE_BIG_ENDIAN,
         "a byte order that is none of kiv_trace_byte_order");
  made.little_endian = given.byte_order == KIV_TRACE_NATIVE_ORDER
                           ? std::endian::native == std::endian::little
                           : given.byte_order == KIV_TRACE_LITTLE_ENDIAN;
  demand(given.address_width == 0 || given.address_width == 4 || given.address_width == 8,
         "an address width that is not 4 or 8");
  made.address_width =
      given.address_width != 0 ? given.address_width : static_cast<int>(sizeof(void*));
  made.replace = given.replace != 0;
  if (given.max_file_size != 0) {
    demand(given.max_file_size >= 1024 && given.max_file_size <= most,
           "a data file's size that is not from 1024 to 2147483647");
    made.max_file_size = static_cast<std::size_t>(given.max_file_size);
  }
  if (given.buffer_size != 0) {
    demand(given.buffer_size <= most, "a buffer of more than 2147483647 bytes");
    made.buffer_size = static_cast<std::size_t>(given.buffer_size);
  }
  return made;
}

}  // namespace

trace_setup checked(const kiv_trace_options& given) {
  demand(given.size == sizeof(kiv_trace_options),
         "options that kiv_trace_options_init() of this version did not set");
  return {identity_of(given), writing_of(given)};
}

moment system_time() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return {now.tv_sec, now.tv_nsec};
}

}  // namespace kiv
