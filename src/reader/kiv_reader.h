#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "events/event_context.h"
#include "header/kiv_hdr.h"
#include "header/moment_text.h"
#include "header/time_text.h"
#include "memory/live_block_pool.h"
#include "reader/data_files.h"
#include "reader/record_layout.h"
#include "reader/replay_tables.h"

namespace kiv {

class csv_file_sequence;
class sql_script;
class XmlParser;
class KivHashLoc_db;
class KivObject_db;
class KivProcess;
class KivProcess_db;
class KivQuery_db;
class KivQueryEvent;
class KivReserveId_db;

// The hub of one trace: owns the header model, the data files, the books and the CSV files that the
// replay writes, and answers what decoders and books ask for.
class kiv_reader {
 public:
  // Parses the header and creates the books and the ten CSV files of the replay. A header that
  // could not be read leaves version 0 and an empty file type. `first`: first trace of the run;
  // `limit`: bytes at which split CSV files go on in a new file.
  kiv_reader(XmlParser* parser, csv_file_sequence* seq, sql_script* script, const char* dir,
             const char* header_path, const char* description, bool first, std::int64_t limit);
  kiv_reader(const kiv_reader&) = delete;
  kiv_reader& operator=(const kiv_reader&) = delete;
  ~kiv_reader();

  const kiv_hdr& header() const { return *header_; }

  // Replays every record of the data files; returns the run's record counter.
  std::uint64_t ReadEvents();

  // The tables written when the replay is over. `records`: the run's record counter.
  void dump_proc_db(std::uint64_t records);
  void dump_hash_db();
  void dump_malid_db(std::uint64_t records);
  void dump_query_db();
  void dump_runid_db();
  void dump_object_db();

  // Decoding.
  data_files& files() { return files_; }
  const record_layout& layout() const { return layout_; }
  template <class Number>
  void readbytes(std::uint32_t width, Number& value) {
    files_.cursor().read(width, value);
  }
  void readbytes(std::uint32_t /*width*/, std::string& text) { text = files_.cursor().read_text(); }
  // A source location's number, and where its text of this moment stands in the book of locations.
  void readloc(std::uint32_t width, std::uint32_t& text_index, std::int64_t& location);

  // Books.
  live_block_pool& live_blocks() { return live_blocks_; }
  KivHashLoc_db& hash_locations() { return *hash_locations_; }
  KivReserveId_db& reserve_ids() { return *reserve_ids_; }
  KivObject_db& objects() { return *objects_; }
  KivProcess_db& processes() { return *processes_; }
  KivQuery_db& queries() { return *queries_; }

  // Tables of the replay.
  csv_file& table(replay_table which) { return tables_->file(which); }
  // The columns that open rows: run id and header pid, and in replay rows the current time. Each
  // is followed by data_sep.
  std::string_view run_columns() const { return run_columns_; }
  std::string_view event_columns() const { return event_columns_; }
  void WriteMarker(std::string_view type, std::string_view subtype, std::string_view time,
                   std::string_view text);
  // Writes the marker of every 1000th record; other counts write nothing.
  void record_count_marker(std::uint32_t count, std::string_view time) {
    if (count % 1000 == 0)
      WriteMarker("Record", "recs", time, "Record nr " + std::to_string(count));
  }

  // Time: the last time stamp of the trace, at first the measurement's start.
  const moment_text& now() const { return now_; }
  void set_now(std::string_view time_text);
  // The local-time text of a moment; stays until the next call.
  std::string_view local_time(std::uint32_t secs, std::uint32_t nsecs) {
    return clock_.text(secs, nsecs);
  }
  const moment_text& end_time() const { return end_time_; }

  // The current process and its call context.
  std::uint32_t current_pid() const { return current_pid_; }
  void set_current_pid(std::uint32_t pid);
  // To be called when the book of processes answers for some pid with another process than before.
  void processes_changed();
  KivProcess* cc_curr_proc() const { return current_process_; }
  std::uint32_t cc_curr_arc() const;
  const hosk_call& cc_curr_bcall() const;
  KivEventContext capture_context() {
    return {this, current_pid_, cc_curr_arc(), &cc_curr_bcall()};
  }

  // The context columns of the current process as text; empty when they are not known.
  std::string_view kept_context() const { return kept_context_; }
  void keep_context(std::string_view columns) { kept_context_ = columns; }
  void context_changed() { kept_context_.clear(); }

  // The open bracket of an SQL operation; at most one is open.
  KivQueryEvent* current_query_event() const { return query_event_.get(); }
  // Opens a bracket of the given type in place of any open one, which is dropped.
  void open_query_event(std::uint32_t type);
  void close_query_event();

 private:
  // Opens a table, has its rows written and closes it.
  void write_end_table(const char* name, const auto& write_rows);

  const std::string directory_;
  csv_file_sequence* const sequence_;
  sql_script* const script_;
  const bool first_;
  const std::int64_t limit_;

  std::unique_ptr<kiv_hdr> header_;
  record_layout layout_;
  data_files files_;
  minute_clock clock_;
  moment_text end_time_;
  std::string run_columns_;
  std::string event_columns_;
  moment_text now_;

  std::unique_ptr<replay_tables> tables_;  // declared before the books: closed after them

  live_block_pool live_blocks_;
  std::unique_ptr<KivHashLoc_db> hash_locations_;
  std::unique_ptr<KivReserveId_db> reserve_ids_;
  std::unique_ptr<KivObject_db> objects_;
  std::unique_ptr<KivProcess_db> processes_;
  std::unique_ptr<KivQuery_db> queries_;

  std::uint32_t current_pid_ = 0;
  KivProcess* current_process_ = nullptr;
  std::string kept_context_;
  std::uint32_t query_in_count_ = 0;
  std::unique_ptr<KivQueryEvent> query_event_;
};

}  // namespace kiv
