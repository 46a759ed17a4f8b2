// The tables written when the replay is over.

#include "analysis/kiv_hashloc.h"
#include "analysis/kiv_object_db.h"
#include "analysis/kiv_process_db.h"
#include "analysis/kiv_query_db.h"
#include "memory/kiv_reserve_id_db.h"
#include "output/csv_file.h"
#include "reader/kiv_reader.h"

namespace kiv {

void kiv_reader::write_end_table(const char* name, const auto& write_rows) {
  csv_file file(sequence_, script_, name, directory_, header_->runid(), first_);
  write_rows(file.get_stream());
}

void kiv_reader::dump_proc_db(std::uint64_t records) {
  processes_->check_end_time(end_time_, records);
  write_end_table("process", [&](std::ostream& os) { processes_->dump_db(os, header_->runid()); });
}

void kiv_reader::dump_hash_db() {
  write_end_table("hashloc", [&](std::ostream& os) { hash_locations_->dump_db(os, run_columns_); });
}

void kiv_reader::dump_malid_db(std::uint64_t records) {
  reserve_ids_->check_end_time(now_, records);
  write_end_table("malid", [&](std::ostream& os) { reserve_ids_->dump_db(os, run_columns_); });
  write_end_table("color",
                  [&](std::ostream& os) { reserve_ids_->dump_db_colors(os, run_columns_); });
}

void kiv_reader::dump_query_db() {
  queries_->check_times(end_time_);
  write_end_table("queries", [&](std::ostream& os) { queries_->dump_db(os, run_columns_); });
}

void kiv_reader::dump_runid_db() {
  write_end_table("runs", [&](std::ostream& os) { os << *header_ << '\n'; });
}

void kiv_reader::dump_object_db() {
  write_end_table("objects", [&](std::ostream& os) { objects_->dump_db_obj(os, run_columns_); });
  write_end_table("functions",
                  [&](std::ostream& os) { objects_->dump_db_objfun(os, run_columns_); });
}

}  // namespace kiv
