// Times the replay of the benchmark traces stage by stage: each stage does what the one before it
// does and more, so that the difference is what the stage costs.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "analysis/kiv_process.h"
#include "driver/process_file.h"
#include "events/memory_events.h"
#include "header/xml_parser.h"
#include "make_trace.h"
#include "memory/kiv_reserve_id_db.h"
#include "output/csv_file_sequence.h"
#include "output/sql_script.h"
#include "reader/event_loop.h"
#include "reader/kiv_reader.h"

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

// Standard output and error stream, thrown away meanwhile.
class silence {
 public:
  silence() : out_(std::cout.rdbuf(nothing_.rdbuf())), err_(std::cerr.rdbuf(nothing_.rdbuf())) {}
  ~silence() {
    std::cout.rdbuf(out_);
    std::cerr.rdbuf(err_);
  }

 private:
  std::ostringstream nothing_;
  std::streambuf* out_;
  std::streambuf* err_;
};

// A reader whose tables cannot be opened: rows are put together and thrown away.
class reader_without_files {
 public:
  explicit reader_without_files(const workload& work)
      : parser_(startElement, endElement, dataElement, nullptr),
        sequence_("csv"),
        script_("sql"),
        reader_(&parser_, &sequence_, &script_, "/nonexistent", work.header_path().c_str(), "",
                true, 0x40000000) {}
  kiv_reader& get() { return reader_; }

 private:
  XmlParser parser_;
  csv_file_sequence sequence_;
  sql_script script_;
  kiv_reader reader_;
};

// Reads the numbers of every record and does nothing with them.
void decode(const workload& work) {
  reader_without_files holder(work);
  kiv_reader& reader = holder.get();
  data_files& files = reader.files();
  if (!files.rd_open()) std::abort();
  std::int64_t sum = 0;
  while (!files.eof()) {
    record_cursor& cursor = files.cursor();
    const kiv_type type = to_kiv_type(cursor.read_tag());
    cursor.read_size();
    const std::uint32_t* widths = reader.layout().widths(type);
    for (; *widths != 0; ++widths) {
      std::int64_t value = 0;
      cursor.read(*widths, value);
      sum += value;
    }
    cursor.go_to_record_end();
  }
  benchmark::DoNotOptimize(sum);
}

template <class Event>
void decode_and_book(kiv_reader& reader) {
  Event event(&reader);
  event.setelems();
  if constexpr (requires { reader.reserve_ids().add_memory(event); }) {
    reader.reserve_ids().add_memory(event);
  }
}

// Books every record; memory records, nearly all of the memory-heavy trace, write no row.
void decode_and_books(const workload& work) {
  reader_without_files holder(work);
  kiv_reader& reader = holder.get();
  if (!reader.files().rd_open()) std::abort();
  event_loop loop(reader);
  while (!reader.files().eof()) {
    record_cursor& cursor = reader.files().cursor();
    const kiv_type type = to_kiv_type(cursor.read_tag());
    cursor.read_size();
    switch (type) {
      case kiv_e_malloc_wf:
        decode_and_book<KivMallocWF>(reader);
        break;
      case kiv_e_malloc_nf:
        decode_and_book<KivMallocNF>(reader);
        break;
      case kiv_e_free:
        decode_and_book<KivFree>(reader);
        break;
      case kiv_e_free_realloc:
        decode_and_book<KivFreeRealloc>(reader);
        break;
      default:
        loop.handle(type);
        break;
    }
    cursor.go_to_record_end();
  }
}

void with_text(const workload& work) {
  reader_without_files holder(work);
  holder.get().ReadEvents();
}

void with_files(const workload& work) {
  csv_file_sequence sequence("csv");
  sql_script script("sql");
  process_file(&sequence, &script, work.directory.c_str(), work.header.c_str(), "", true,
               0x40000000);
}

void run(benchmark::State& state, const workload& work, void (*stage)(const workload&)) {
  const silence quiet;
  // The first run may pay for memory that a virtual machine's host has yet to hand out.
  counters = {};
  stage(work);
  for ([[maybe_unused]] auto step : state) {
    counters = {};
    stage(work);
  }
  const auto records = static_cast<double>(work.records);
  state.counters["records/s"] =
      benchmark::Counter(records, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["per record"] = benchmark::Counter(
      records, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  if (stage == with_files) {
    state.counters["MB out"] =
        benchmark::Counter(static_cast<double>(bytes_of_tables(work.directory)) * 1e-6,
                           benchmark::Counter::kIsIterationInvariantRate);
  }
}

void register_stages(const std::string& name, const workload& work) {
  const struct {
    const char* name;
    void (*stage)(const workload&);
  } stages[] = {{"decode", decode},
                {"decode and books", decode_and_books},
                {"with text", with_text},
                {"with files", with_files}};
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
