#include "reader/kiv_reader.h"

#include "analysis/kiv_hashloc.h"
#include "analysis/kiv_object_db.h"
#include "analysis/kiv_process_db.h"
#include "analysis/kiv_query_db.h"
#include "memory/kiv_reserve_id_db.h"
#include "output/csv_row.h"
#include "output/sql_script.h"
#include "settings.h"

namespace kiv {

kiv_reader::kiv_reader(XmlParser* parser, csv_file_sequence* seq, sql_script* script,
                       const char* dir, const char* header_path, const char* description,
                       bool first, std::int64_t limit)
    : directory_(dir),
      sequence_(seq),
      script_(script),
      first_(first),
      limit_(limit),
      header_(std::make_unique<kiv_hdr>(parser, header_path, description)) {
  header_->read_header();  // the driver looks at what was read, however much that is
  header_->dump_entries();
  layout_ = record_layout(*header_);
  files_.set_list(header_->files(), header_->little_endian());
  end_time_ = moment_text(time_text(header_->end_secs(), header_->end_nsecs()));
  run_columns_ = header_->runid() + data_sep + std::to_string(header_->pid()) + data_sep;
  set_now(time_text(header_->start_secs(), header_->start_nsecs()));

  hash_locations_ = std::make_unique<KivHashLoc_db>();
  reserve_ids_ = std::make_unique<KivReserveId_db>(this);
  objects_ = std::make_unique<KivObject_db>(this);
  auto default_process = std::make_unique<KivProcess>(this, id_stat_divisor);
  default_process->set_start(now_, 0);
  processes_ = std::make_unique<KivProcess_db>(std::move(default_process));
  queries_ = std::make_unique<KivQuery_db>();
  processes_changed();

  script_->set_path(directory_, header_->runid(), header_->version(), first_);
  tables_ =
      std::make_unique<replay_tables>(sequence_, script_, directory_, header_->runid(), first_);
}

kiv_reader::~kiv_reader() = default;

void kiv_reader::readloc(std::uint32_t width, std::uint32_t& text_index, std::int64_t& location) {
  readbytes(width, location);
  text_index = hash_locations_->text_index(location);
}

void kiv_reader::set_now(std::string_view time_text) {
  now_ = moment_text(time_text);
  event_columns_ = run_columns_;
  event_columns_ += time_text;
  event_columns_ += data_sep;
}

void kiv_reader::set_current_pid(std::uint32_t pid) {
  current_pid_ = pid;
  processes_changed();
}

void kiv_reader::processes_changed() {
  current_process_ = processes_->get_process(current_pid_);
  context_changed();
}

std::uint32_t kiv_reader::cc_curr_arc() const { return current_process_->current_arc(); }

const hosk_call& kiv_reader::cc_curr_bcall() const { return current_process_->current_hosk_call(); }

void kiv_reader::open_query_event(std::uint32_t type) {
  query_event_ = std::make_unique<KivQueryEvent>(this, type, ++query_in_count_);
}

void kiv_reader::close_query_event() { query_event_.reset(); }

void kiv_reader::WriteMarker(std::string_view type, std::string_view subtype, std::string_view time,
                             std::string_view text) {
  const std::uint64_t records = reserve_ids_->global().rec.value;
  csv_row row(table(replay_table::marker));
  row.raw(run_columns_).cols(counters.marker_cnt++, records, counters.last_record_count);
  row.col(time).col(type.substr(0, 25)).col(subtype.substr(0, 10)).col(text.substr(0, 255));
  row.end_line();
  counters.last_record_count = records;
}

}  // namespace kiv
