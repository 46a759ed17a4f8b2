#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "replay/event_context.h"
#include "util/moment.h"

namespace kiv {

struct KivQueryOut;

// One SQL statement.
class KivQuery {
 public:
  KivQuery(std::string_view text, std::uint32_t current_pid, const moment& now)
      : query(text), pid(current_pid), start_time(now) {}

  // Takes the statement's numbers from the query-out that completes it.
  void complete(const KivQueryOut& event);
  // Notes the time of a bracket of operation 'b' or 'c' around the statement; others change
  // nothing.
  void note_use(std::uint32_t operation, const moment& now);
  // Closes the times at the end of the trace.
  void check_times(const moment& end_time);

  const std::string query;
  std::uint32_t qid = 0;
  std::uint32_t linked_qid = 0;  // the same as qid when the record names none
  const std::uint32_t pid;
  const moment start_time;
  std::optional<moment> first_use;
  std::optional<moment> last_use;
};

// What a bracket of an SQL operation counts: heap records and memory records.
struct query_counts {
  std::uint64_t sbrk_rows = 0;
  std::uint64_t memory_events = 0;
};

// One bracket of an SQL operation, from its query-in to its query-out.
class KivQueryEvent {
 public:
  // A count at both ends of the bracket; 0 and 0 when nothing was counted in between.
  struct span {
    std::uint64_t start = 0;
    std::uint64_t end = 0;
  };

  KivQueryEvent(std::uint32_t operation, std::uint32_t number, const KivEventContext& context,
                const query_counts& counts);
  KivQueryEvent(const KivQueryEvent&) = delete;  // the context looks at call_
  KivQueryEvent& operator=(const KivQueryEvent&) = delete;

  void complete(const KivQueryOut& event, const query_counts& counts);

  std::uint32_t operation() const { return operation_; }  // a character code
  std::uint32_t sequence_number() const { return sequence_number_; }
  std::uint32_t qid() const { return qid_; }
  std::uint32_t linked_qid() const { return linked_qid_; }
  const span& sbrk_rows() const { return sbrk_rows_; }
  const span& memory_events() const { return memory_events_; }
  // The context at its query-in.
  const KivEventContext& context() const { return context_; }

 private:
  std::uint32_t qid_ = 0;
  std::uint32_t linked_qid_ = 0;
  const std::uint32_t operation_;
  span sbrk_rows_;
  span memory_events_;
  const hosk_call call_;  // the bracket's own: the process goes on to other calls
  const KivEventContext context_;
  const std::uint32_t sequence_number_;
};

}  // namespace kiv
