#include "replay/kiv_reader.h"

#include "replay/event_loop.h"
#include "replay/kiv_hashloc.h"
#include "replay/kiv_object_db.h"
#include "replay/kiv_process_db.h"
#include "replay/kiv_query_db.h"
#include "replay/kiv_reserve_id_db.h"
#include "trace/diagnostics.h"

namespace kiv {

kiv_reader::kiv_reader(run_context& run, const kiv_hdr& header, file_source& files, row_books books)
    : run_(run),
      header_(header),
      layout_(header.layout()),
      files_(header.files(), header.little_endian(), layout_, files, run.faults),
      now_(header.start()),
      hash_locations_(std::make_unique<KivHashLoc_db>()),
      reserve_ids_(std::make_unique<KivReserveId_db>(*this, books == row_books::kept)),
      objects_(std::make_unique<KivObject_db>()),
      processes_(std::make_unique<KivProcess_db>(static_cast<std::uint32_t>(header.pid()), now_,
                                                 *reserve_ids_, run.faults)),
      queries_(std::make_unique<KivQuery_db>()) {
  processes_changed();
}

kiv_reader::~kiv_reader() = default;

std::uint64_t kiv_reader::ReadEvents(replay_observer& observer) {
  observer_ = &observer;
  if (files_.rd_open()) {
    event_loop(*this).run();
  } else {
    faults().replay_without_file(files_.current_path());
  }
  close_books();
  return run_.counters.record_count;
}

void kiv_reader::close_books() {
  const std::uint64_t records = run_.counters.record_count;
  processes_->check_end_time({header_.end(), records});
  reserve_ids_->check_end_time(now_, records);
  queries_->check_times(header_.end());
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

void kiv_reader::open_query_event(std::uint32_t operation) {
  const query_counts counts{run_.counters.rec_sbrk_count, reserve_ids_->global().rec.value};
  query_event_ =
      std::make_unique<KivQueryEvent>(operation, ++query_in_count_, current_context(), counts);
}

void kiv_reader::close_query_event() { query_event_.reset(); }

}  // namespace kiv
