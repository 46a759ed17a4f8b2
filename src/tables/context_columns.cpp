// The context columns, which the rows of four tables share.

#include "replay/event_context.h"
#include "replay/kiv_process_db.h"
#include "replay/kiv_query.h"
#include "replay/kiv_reader.h"
#include "tables/kiv_tables.h"

namespace kiv {

void kiv_tables::context_columns(csv_row& row, const KivEventContext& context) {
  // Only a query bracket is written when another process may be current.
  const KivProcess& process = context.pid == reader_.current_pid()
                                  ? *reader_.cc_curr_proc()
                                  : *reader_.processes().get_process(context.pid);
  if (process.pid() == 0) {
    row.cols(0, 0, 0, 0).col_pair(0, 0).col_pair(0, 0).col("").col(0).col("").col(0);
    return;
  }
  row.cols(process.pid(), context.arc, process.flow_counter(), process.stack_depth());
  const FuncArc* arc = process.get_arc(context.arc);
  for (const Func_rel* end :
       {arc == nullptr ? nullptr : arc->from, arc == nullptr ? nullptr : arc->to}) {
    const Func_loc* location = end == nullptr ? nullptr : end->location;
    if (location == nullptr) {
      row.col_pair(0U, 0);
    } else {
      row.col_pair(location->object_id, location->function_number);
    }
  }
  row.col(context.call->name).col(context.call->symbol).col(context.call->arguments);
  const KivQueryEvent* query = reader_.current_query_event();
  row.col(query == nullptr ? 0U : query->sequence_number());
}

// Several memory events mostly follow one another in one context.
void kiv_tables::current_context_columns(csv_row& row) {
  if (kept_version_ == reader_.context_version() && !kept_context_.empty()) {
    row.raw(kept_context_);
    return;
  }
  const std::size_t start = row.length();
  context_columns(row, reader_.current_context());
  kept_context_ = row.text_from(start);
  kept_version_ = reader_.context_version();
}

}  // namespace kiv
