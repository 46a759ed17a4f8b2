#include "events/event_context.h"

#include "analysis/kiv_process.h"
#include "analysis/kiv_process_db.h"
#include "analysis/kiv_query.h"
#include "reader/kiv_reader.h"

namespace kiv {

void KivEventContext::columns(csv_row& row) const {
  // Only a query bracket is written when another process may be current.
  const KivProcess& process = pid_ == reader_->current_pid()
                                  ? *reader_->cc_curr_proc()
                                  : *reader_->processes().get_process(pid_);
  if (process.pid() == 0) {
    row.cols(0, 0, 0, 0).col_pair(0, 0).col_pair(0, 0).col("").col(0).col("").col(0);
    return;
  }
  row.cols(process.pid(), arc_, process.flow_counter(), process.stack_depth());
  const FuncArc* arc = process.get_arc(arc_);
  for (const Func_rel* end :
       {arc == nullptr ? nullptr : arc->from, arc == nullptr ? nullptr : arc->to}) {
    const Func_loc* location = end == nullptr ? nullptr : end->location;
    if (location == nullptr) {
      row.col_pair(0U, 0);
    } else {
      row.col_pair(location->object_id, location->function_number);
    }
  }
  row.col(call_->name).col(call_->symbol).col(call_->arguments);
  const KivQueryEvent* query = reader_->current_query_event();
  row.col(query == nullptr ? 0U : query->sequence_number());
}

std::ostream& KivEventContext::dumpcontext(std::ostream& os) const {
  return dump_columns(*this, os);
}

}  // namespace kiv
