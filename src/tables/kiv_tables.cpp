#include "tables/kiv_tables.h"

#include "replay/kiv_hashloc.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"
#include "tables/run_output.h"

namespace kiv {

kiv_tables::kiv_tables(const kiv_reader& reader, run_output& output, const std::string& directory,
                       std::string_view description, bool first, std::int64_t limit)
    : reader_(reader),
      output_(output),
      directory_(directory),
      description_(description),
      first_(first) {
  const kiv_hdr& header = reader.header();
  const char separator = output.context.data_sep;
  run_columns_ = header.runid() + separator + std::to_string(header.pid()) + separator;
  time_changed();
  set_heap_columns();

  output.script.set_path(directory, header.runid(), header.version(), first);
  for (const csv_table& table : csv_tables()) {
    if (table.created != table_created::with_reader) continue;
    auto& opened = files_[static_cast<std::size_t>(table.id)];
    opened.emplace(output, table.id, directory, header.runid(), first);
    if (table.split_by_size) opened->split_at(limit);
  }
}

// The order shows in the messages about files that could not be written whole.
kiv_tables::~kiv_tables() {
  using enum table_id;
  for (const table_id table : {sbrk, queryevents, marker, memory}) {
    files_[static_cast<std::size_t>(table)].reset();
  }
  for (auto& file : files_) file.reset();
}

void kiv_tables::time_changed() {
  event_columns_ = run_columns_;
  event_columns_ += clock_.text(reader_.now());
  event_columns_ += output_.context.data_sep;
}

void kiv_tables::set_heap_columns() {
  const heap_total& growths = reader_.reserve_ids().sbrk();
  const heap_total& gaps = reader_.reserve_ids().gap();
  std::array<char, 4 * number_room> text;
  const char* end = put_columns(text.data(), output_.context.data_sep, growths.total, growths.count,
                                gaps.total, gaps.count);
  heap_columns_.assign(text.data(), static_cast<std::size_t>(end - text.data()));
}

void kiv_tables::write_end_table(table_id table, void (kiv_tables::*write_rows)(csv_file&)) {
  csv_file file(output_, table, directory_, reader_.header().runid(), first_);
  (this->*write_rows)(file);
}

void kiv_tables::write_end_tables() {
  write_end_table(table_id::process, &kiv_tables::write_process_rows);
  write_end_table(table_id::hashloc, &kiv_tables::write_hashloc_rows);
  write_end_table(table_id::malid, &kiv_tables::write_malid_rows);
  write_end_table(table_id::color, &kiv_tables::write_color_rows);
  write_end_table(table_id::queries, &kiv_tables::write_queries_rows);
  write_end_table(table_id::runs, &kiv_tables::write_runs_row);
  write_end_table(table_id::objects, &kiv_tables::write_objects_rows);
  write_end_table(table_id::functions, &kiv_tables::write_functions_rows);
}

}  // namespace kiv
