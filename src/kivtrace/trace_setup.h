#pragma once

#include "kivtrace/kiv_trace.h"
#include "trace/trace_writer.h"

namespace kiv {

// What the options of the C interface mean to the writer.
struct trace_setup {
  trace_identity identity;
  trace_writer::options writing;
};

// With the defaults filled in. Throws std::invalid_argument, which says what is wrong.
trace_setup checked(const kiv_trace_options& given);

moment system_time();

}  // namespace kiv
