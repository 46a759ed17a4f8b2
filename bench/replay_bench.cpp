// Times the replay of the benchmark traces stage by stage: each stage does what the one before it
// does and more, so that the difference is what the stage costs.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "make_trace.h"
#include "replay/kiv_reader.h"
#include "tables/kiv_tables.h"
#include "tables/run_output.h"
#include "trace/decode.h"
#include "trace/diagnostics.h"
#include "trace/file_source.h"
#include "trace/xml_parser.h"

namespace kiv::bench {

namespace {

namespace fs = std::filesystem;

// A trace on disk, made once, and a directory for its tables.
struct workload {
  std::string directory;
  std::string header;
  std::uint64_t records = 0;

  std::string header_path() const { return directory + "/" + header; }
};

fs::path scratch() {
  static const struct owner {
    owner() { fs::create_directories(path); }
    ~owner() { fs::remove_all(path); }
    fs::path path = fs::temp_directory_path() / ("kiv_bench_" + std::to_string(getpid()));
  } directory;
  return directory.path;
}

workload make(const std::string& kind, std::uint32_t records) {
  const test::trace made = kind == "memory" ? memory_heavy(records) : flow_heavy(records);
  workload result;
  result.directory = scratch() / (kind + std::to_string(records));
  result.header = made.header_name();
  result.records = made.record_count();
  if (!made.write(result.directory)) std::abort();
  return result;
}

std::uint64_t bytes_of_tables(const std::string& directory) {
  std::uint64_t bytes = 0;
  for (const auto& entry : fs::directory_iterator(directory)) {
    if (entry.path().extension() == ".csv") bytes += entry.file_size();
  }
  return bytes;
}

// What the stages share: a parsed header, books to be filled and nobody who listens to messages.
struct replay_of {
  explicit replay_of(const workload& work) : header(parser) {
    header.read_header(work.header_path());
  }

  diagnostics silent;
  run_context context{silent};
  XmlParser parser{silent};
  kiv_hdr header;
  disk_files disk;
};

// Reads the numbers of every record and does nothing with them.
void decode_only(const workload& work) {
  replay_of trace(work);
  const record_layout layout = trace.header.layout();
  data_files files(trace.header.files(), trace.header.little_endian(), layout, trace.disk,
                   trace.silent);
  if (!files.rd_open()) std::abort();
  std::int64_t sum = 0;
  while (!files.eof()) {
    record_cursor& cursor = files.cursor();
    const kiv_type type = to_kiv_type(cursor.read_tag());
    cursor.read_size();
    const std::uint32_t* widths = layout.widths(type);
    for (; *widths != 0; ++widths) {
      std::int64_t value = 0;
      cursor.read(*widths, value);
      sum += value;
    }
    cursor.go_to_record_end();
  }
  benchmark::DoNotOptimize(sum);
}

// Books every record, with an observer that ignores what happens.
void with_books(const workload& work) {
  replay_of trace(work);
  replay_observer nobody;
  kiv_reader(trace.context, trace.header, trace.disk).ReadEvents(nobody);
}

void with_tables(const workload& work) {
  replay_of trace(work);
  open_files files;
  run_output output(trace.context, files);
  kiv_reader reader(trace.context, trace.header, trace.disk);
  kiv_tables tables(reader, output, work.directory, "", true, 0x40000000);
  reader.ReadEvents(tables);
  tables.write_end_tables();
}

void run(benchmark::State& state, const workload& work, void (*stage)(const workload&)) {
  // The first run may pay for memory that a virtual machine's host has yet to hand out.
  stage(work);
  for ([[maybe_unused]] auto step : state) {
    stage(work);
  }
  const auto records = static_cast<double>(work.records);
  state.counters["records/s"] =
      benchmark::Counter(records, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["per record"] = benchmark::Counter(
      records, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  if (stage == with_tables) {
    state.counters["MB out"] =
        benchmark::Counter(static_cast<double>(bytes_of_tables(work.directory)) * 1e-6,
                           benchmark::Counter::kIsIterationInvariantRate);
  }
}

void register_stages(const std::string& name, const workload& work) {
  const struct {
    const char* name;
    void (*stage)(const workload&);
  } stages[] = {
      {"decode", decode_only}, {"decode and books", with_books}, {"with tables", with_tables}};
  for (const auto& one : stages) {
    benchmark::RegisterBenchmark((name + "/" + one.name).c_str(), [=](benchmark::State& state) {
      run(state, work, one.stage);
    })->Unit(benchmark::kMillisecond);
  }
}

}  // namespace

}  // namespace kiv::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  using kiv::bench::make;
  using kiv::bench::register_stages;
  register_stages("memory 300k", make("memory", 300'000));
  register_stages("memory 3M", make("memory", 3'000'000));
  register_stages("flow 1M", make("flow", 1'000'000));
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
