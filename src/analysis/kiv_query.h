#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "events/event_context.h"
#include "header/moment_text.h"
#include "output/csv_row.h"

namespace kiv {

class KivQueryOut;

// One SQL statement.
class KivQuery {
 public:
  KivQuery(std::string text, std::uint32_t current_pid, const moment_text& now)
      : query(std::move(text)), pid(current_pid), start_time(now) {}

  // Takes the statement's numbers from the query-out that completes it.
  void complete(const KivQueryOut& event);
  // Notes the time of a bracket of type 'b' or 'c' around the statement; others change nothing.
  void note_use(std::uint32_t type, const moment_text& now);
  // Closes the times at the end of the trace.
  void check_times(const moment_text& end_time);

  // The row behind run id and pid, its "<<>>" included, without a line end.
  void print(csv_row& row) const;

  const std::string query;
  std::uint32_t qid = 0;
  std::uint32_t linked_qid = 0;  // the same as qid when the record names none
  const std::uint32_t pid;
  const moment_text start_time;
  moment_text first_use;  // empty until then
  moment_text last_use;
};

// One bracket of an SQL operation, from its query-in to its query-out.
class KivQueryEvent {
 public:
  KivQueryEvent(kiv_reader* reader, std::uint32_t bracket_type, std::uint32_t number);
  KivQueryEvent(const KivQueryEvent&) = delete;  // the context looks at call_
  KivQueryEvent& operator=(const KivQueryEvent&) = delete;

  void complete(const KivQueryOut& event);

  // The columns of the `queryevents` row behind run id, pid, sequence number and time.
  void columns(csv_row& row) const;
  std::ostream& dumpqevent(std::ostream& os) const { return dump_columns(*this, os); }

  std::uint32_t type() const { return type_; }
  std::uint32_t sequence_number() const { return sequence_number_; }

 private:
  // A count at both ends of the bracket; 0 and 0 when nothing was counted in between.
  struct span {
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    void close(std::uint64_t count);
  };

  kiv_reader* reader_;
  std::uint32_t qid_ = 0;
  std::uint32_t linked_qid_ = 0;
  const std::uint32_t type_;  // a character code
  span sbrk_rows_;
  span memory_events_;
  const hosk_call call_;  // the context's own: the process goes on to other calls
  const KivEventContext context_;
  const std::uint32_t sequence_number_;
};

}  // namespace kiv
