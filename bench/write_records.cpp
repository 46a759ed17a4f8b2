// write_records RECORDS DIRECTORY: writes a trace of so many records through the C interface, a
// quarter each allocations, frees, function entries and returns, and prints what one takes.

#include <kiv_trace.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

double processor_seconds() {
  timespec used{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

int write_records(std::uint64_t records, const char* directory) {
  kiv_trace_options options;
  kiv_trace_options_init(&options);
  options.run_id = "written";
  options.directory = directory;
  options.replace = options.pid = 1;
  kiv_trace* trace = kiv_trace_open(&options);
  if (trace == nullptr) return -1;
  for (std::uint64_t i = 0; i < records; i += 4) {
    const std::uint64_t addr = 0x5581'0000'0000 + 16 * i;
    kiv_trace_flow_in(trace, 1, 1, 2, 1);
    kiv_trace_malloc_wf(trace, 1, 0, addr, 0, 120, 136, 0x1000);
    kiv_trace_free(trace, 1, 0, addr, 0x1000);
    kiv_trace_flow_out(trace);
  }
  return kiv_trace_close(trace);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: write_records RECORDS DIRECTORY\n");
    return 1;
  }
  const std::uint64_t records = std::strtoull(argv[1], nullptr, 10);
  const double before = processor_seconds();
  if (write_records(records, argv[2]) != 0) {
    std::fprintf(stderr, "write_records: %s\n", kiv_trace_error());
    return 1;
  }
  const double took = processor_seconds() - before;
  std::printf("  %-34s %8.1f ns\n", "processor time per record",
              took * 1e9 / static_cast<double>(records));
  return 0;
}
