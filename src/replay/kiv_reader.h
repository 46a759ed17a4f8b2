#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "replay/event_context.h"
#include "replay/live_block_pool.h"
#include "replay/run_context.h"
#include "trace/data_files.h"
#include "trace/kiv_hdr.h"
#include "trace/record_layout.h"
#include "util/moment.h"

namespace kiv {

class KivHashLoc_db;
class KivObject_db;
class KivProcess;
class KivProcess_db;
class KivQueryEvent;
class KivQuery_db;
class KivReserveId_db;
class file_source;
class replay_observer;

// The replay of one trace: owns its books and its data files, and answers what the rules and the
// observer ask for.
class kiv_reader {
 public:
  // The statistics of colours, and of allocation ids within processes: most of what a replay needs,
  // for the rows of its tables alone.
  enum class row_books : std::uint8_t { kept, left_out };

  // All three must outlive the reader. A header that could not be read has version 0 and an empty
  // file type; whether the trace is worth a replay is the caller's to say.
  kiv_reader(run_context& run, const kiv_hdr& header, file_source& files,
             row_books books = row_books::kept);
  kiv_reader(const kiv_reader&) = delete;
  kiv_reader& operator=(const kiv_reader&) = delete;
  ~kiv_reader();

  run_context& run() const { return run_; }
  diagnostics& faults() const { return run_.faults; }
  const kiv_hdr& header() const { return header_; }
  data_files& files() { return files_; }
  const data_files& files() const { return files_; }
  const record_layout& layout() const { return layout_; }

  // The number of the record that is being read, decoded or not, from 1.
  std::uint32_t event_number() const { return event_number_; }
  std::uint32_t count_event() { return ++event_number_; }
  void count_events(std::uint32_t count) { event_number_ += count; }

  // Replays every record of the data files, telling the observer what happens, and then closes the
  // times of all that is still open. Returns the run's record counter.
  std::uint64_t ReadEvents(replay_observer& observer);
  // Who is told, during the replay.
  replay_observer& observer() const { return *observer_; }

  // Books.
  live_block_pool& live_blocks() { return live_blocks_; }
  KivHashLoc_db& hash_locations() const { return *hash_locations_; }
  KivReserveId_db& reserve_ids() const { return *reserve_ids_; }
  KivObject_db& objects() const { return *objects_; }
  KivProcess_db& processes() const { return *processes_; }
  KivQuery_db& queries() const { return *queries_; }

  // The last time stamp of the trace, at first the measurement's start.
  const moment& now() const { return now_; }
  void set_now(const moment& now) { now_ = now; }

  // The current process and its call context.
  std::uint32_t current_pid() const { return current_pid_; }
  void set_current_pid(std::uint32_t pid);
  // To be called when the book of processes answers for some pid with another process than before.
  void processes_changed();
  KivProcess* cc_curr_proc() const { return current_process_; }
  std::uint32_t cc_curr_arc() const;
  const hosk_call& cc_curr_bcall() const;
  KivEventContext current_context() const {
    return {current_pid_, cc_curr_arc(), &cc_curr_bcall()};
  }
  // Rises whenever the context may have changed: what was made of it holds while this stays.
  std::uint64_t context_version() const { return context_version_; }
  void context_changed() { ++context_version_; }

  // The open bracket of an SQL operation; at most one is open.
  KivQueryEvent* current_query_event() const { return query_event_.get(); }
  // Opens a bracket around an operation in place of any open one, which is dropped.
  void open_query_event(std::uint32_t operation);
  void close_query_event();

 private:
  void close_books();

  run_context& run_;
  const kiv_hdr& header_;
  record_layout layout_;
  data_files files_;
  replay_observer* observer_ = nullptr;
  moment now_;
  std::uint32_t event_number_ = 0;

  live_block_pool live_blocks_;
  std::unique_ptr<KivHashLoc_db> hash_locations_;
  std::unique_ptr<KivReserveId_db> reserve_ids_;
  std::unique_ptr<KivObject_db> objects_;
  std::unique_ptr<KivProcess_db> processes_;
  std::unique_ptr<KivQuery_db> queries_;

  std::uint32_t current_pid_ = 0;
  KivProcess* current_process_ = nullptr;
  std::uint64_t context_version_ = 0;
  std::uint32_t query_in_count_ = 0;
  std::unique_ptr<KivQueryEvent> query_event_;
};

}  // namespace kiv
