// The rows of the tables that are written from the books when the replay is over.

#include "replay/kiv_hashloc.h"
#include "replay/kiv_object_db.h"
#include "replay/kiv_process_db.h"
#include "replay/kiv_query_db.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"
#include "tables/kiv_tables.h"

namespace kiv {

void kiv_tables::write_process_rows(csv_file& file) {
  reader_.processes().for_each_ascending([&](const KivProcess& process) {
    csv_row row(file);
    row.col(reader_.header().runid()).cols(process.main_pid(), process.pid());
    row.col(process.session_name()).cols(process.mal_id(), process.xml_id(), process.parent());
    row.col(clock_.text(process.start().time)).col(clock_.text(process.end().time));
    row.cols(process.start().record, process.end().record).end_line();
  });
}

void kiv_tables::write_hashloc_rows(csv_file& file) {
  for (const KivHashLoc_db::entry* entry : reader_.hash_locations().ordered()) {
    csv_row row(file);
    row.raw(run_columns_).col(entry->location).col(entry->source_line).end_line();
  }
}

void kiv_tables::write_malid_rows(csv_file& file) {
  const auto cut = [](std::string_view text, std::size_t length) { return text.substr(0, length); };
  reader_.reserve_ids().for_each_ascending([&](const KivMalid& id) {
    csv_row row(file);
    row.raw(run_columns_).cols(id.id, id.location).col(id.reserve_type);
    row.col(cut(id.category, 10)).col(cut(id.description, 300)).col(cut(id.reference, 200));
    row.col(id.default_size).col(clock_.text(id.start_time)).col(clock_.text(id.end_time));
    row.cols(id.start_record, id.end_record).end_line();
  });
}

void kiv_tables::write_color_rows(csv_file& file) {
  reader_.reserve_ids().for_each_ascending([&](const KivMalid& id) {
    for (std::uint32_t color = 0; color < id.color_count(); ++color) {
      csv_row row(file);
      row.raw(run_columns_).cols(id.id, color).col(id.color_name(color)).end_line();
    }
  });
}

void kiv_tables::write_queries_rows(csv_file& file) {
  reader_.queries().for_each_ascending([&](const KivQuery& query) {
    csv_row row(file);
    row.raw(run_columns_).cols(query.pid, query.qid, query.linked_qid);
    row.col(clock_.text(query.start_time)).col(clock_.text(*query.first_use));
    row.col(clock_.text(*query.last_use)).raw(query.query).raw(row_end_marker).end_text();
  });
}

void kiv_tables::write_runs_row(csv_file& file) {
  const kiv_hdr& header = reader_.header();
  csv_row row(file);
  row.raw(run_columns_).col(clock_.text(header.start())).col(clock_.text(header.end()));
  row.col(header.progname()).col(header.lom()).col(header.pacc()).col(header.hostname());
  row.col(header.user()).col(description_);
  row.cols(header.m_entry_size(), header.mem_block_size(), header.m_group_size()).end_line();
}

void kiv_tables::write_objects_rows(csv_file& file) {
  csv_row(file).raw(run_columns_).col(0).col("(no object)").end_line();
  reader_.objects().for_each_ascending([&](const KivObject& object) {
    csv_row row(file);
    row.raw(run_columns_).col(object.id_of_obj).col(object.name).end_line();
  });
}

void kiv_tables::write_functions_rows(csv_file& file) {
  csv_row(file).raw(run_columns_).col("(no object)").cols(0, 0).col("(no function)").end_line();
  reader_.objects().for_each_ascending([&](const KivObject& object) {
    object.functions.for_each([&](std::int32_t number, std::string_view name) {
      csv_row row(file);
      row.raw(run_columns_).col(object.name).cols(object.id_of_obj, number).col(name).end_line();
    });
  });
}

}  // namespace kiv
