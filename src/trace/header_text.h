#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "trace/record_types.h"
#include "util/moment.h"

namespace kiv {

// What a header says of a data file whose size is not known yet; the most that readers take.
inline constexpr std::size_t size_of_open_file = 2147483647;

// What a header file says, in the order in which it says it.
struct header_text {
  struct element {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
  };
  struct data_file {
    std::string path;
    std::string size;  // bytes, decimal
  };

  std::vector<element> identity;   // from the format's version to the run
  std::vector<element> allocator;  // sizes of the traced allocator's bookkeeping
  std::vector<record_definition> entries;
  std::vector<data_file> files;
  std::vector<element> end;  // known when the process ends
  bool closed = false;       // else the text breaks off behind the data files

  // The XML document.
  std::string document() const;
};

// Who left a trace.
struct trace_identity {
  std::string run_id;
  int pid = 0;
  std::string program, user, environment, account, host;
  moment start;
  // Bytes of bookkeeping of the traced allocator: for a block, for a chunk of its heap, for a group
  // of chunks.
  int m_entry_size = 0, mem_block_size = 0, m_group_size = 0;
};

// A header with every record type and no data file. Its end lacks the time at which the process
// ended.
header_text make_header_text(const trace_identity& identity, bool little_endian, int address_width);
void set_end_time(header_text& header, moment time);

// "<base>.<pid>.kivhdr" and "<base>.<pid>.<nnn>.kivdat".
std::string header_file_name(std::string_view base, std::string_view pid);
std::string data_file_name(std::string_view base, std::string_view pid, std::size_t number);

}  // namespace kiv
