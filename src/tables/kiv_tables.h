#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "replay/observer.h"
#include "tables/csv_file.h"
#include "tables/csv_row.h"
#include "util/time_text.h"

namespace kiv {

class Func_rel;
class KivSymbol;
class kiv_reader;
struct KivEventContext;
struct run_output;

// The observer that writes the eighteen tables of a trace: ten while it is replayed, eight from the
// books when it is over. Each table has one function that writes its row.
class kiv_tables final : public replay_observer {
 public:
  // Announces the trace to the script and opens the ten tables of the replay in `directory`.
  // `first`: no trace came before in this output; `limit`: bytes at which split tables go on in a
  // new file. All arguments but these two must outlive the object.
  kiv_tables(const kiv_reader& reader, run_output& output, const std::string& directory,
             std::string_view description, bool first, std::int64_t limit);
  ~kiv_tables() override;

  // Writes the tables of the books.
  void write_end_tables();

  void trace_began() override;
  void trace_ended() override;
  void time_changed() override;
  void thousandth_record(std::uint32_t count) override;
  void block_resized(block_handle block, const memory_change& resized) override;
  void block_ended(block_handle block, const live_block& ended, std::uint64_t cause,
                   kiv_type by) override;
  void memory_changed(const memory_change& change) override;
  void heap_grew(const KivSbrk& event) override;
  void heap_left_gap(const KivSbrkGap& event) override;
  void allocator_reported(const KivMallInfo& event) override;
  void id_reserved(const KivMalid& id) override;
  void id_gives_back(const KivMalid& id, kiv_type by) override;
  void process_started(const KivProcess& process) override;
  void process_ended(const KivProcess& process) override;
  void function_entered(const KivProcess& process, std::uint32_t depth, std::uint32_t arc) override;
  void function_left(const KivProcess& process, std::uint32_t depth, std::uint32_t arc) override;
  void query_ended(const KivQueryEvent& bracket) override;
  void program_marker(std::string_view text) override;

 private:
  csv_file& file(table_id table) { return *files_[static_cast<std::size_t>(table)]; }

  // Rows of the replay.
  void write_memory_row(const memory_change& change);
  void write_freemem_row(std::uint64_t ended, std::uint64_t cause, kiv_type type);
  void write_sbrk_row(kiv_type type, std::int64_t first, std::int64_t second);
  void write_flow_row(const KivProcess& process, std::uint32_t depth, std::uint32_t arc,
                      char direction);
  void write_marker_row(std::string_view type, std::string_view subtype, std::string_view text);
  void write_arcs_rows(const KivProcess& process);
  void write_symbols_rows(const KivProcess& process);
  void write_flowdata_rows(const KivProcess& process);

  // The context columns: process, arc, flow counter, depth of the stack, caller and callee of the
  // arc, Hosk call, query bracket.
  void context_columns(csv_row& row, const KivEventContext& context);
  // Those of the context in force, whose text is kept from row to row.
  void current_context_columns(csv_row& row);
  // Object name, object id, function number and function name.
  void function_columns(csv_row& row, const Func_rel& function);

  // Rows at the end.
  void write_end_table(table_id table, void (kiv_tables::*write_rows)(csv_file&));
  void write_process_rows(csv_file& file);
  void write_hashloc_rows(csv_file& file);
  void write_malid_rows(csv_file& file);
  void write_color_rows(csv_file& file);
  void write_queries_rows(csv_file& file);
  void write_runs_row(csv_file& file);
  void write_objects_rows(csv_file& file);
  void write_functions_rows(csv_file& file);

  void set_heap_columns();
  template <class... Pieces>
  const std::string& marker_text(const Pieces&... pieces);

  const kiv_reader& reader_;
  run_output& output_;
  const std::string& directory_;
  const std::string_view description_;
  const bool first_;
  std::array<std::optional<csv_file>, table_count> files_;

  // Texts that rows share, each with a separator behind its last column but the heap's.
  minute_clock clock_;
  std::string run_columns_;    // run id and header pid: every row but those of two tables
  std::string event_columns_;  // and the time: rows of the replay
  std::string heap_columns_;   // totals and counts of growths and gaps
  std::string kept_context_;   // empty when it is not known
  std::uint64_t kept_version_ = 0;
  std::string marker_text_;
};

}  // namespace kiv
