// The lines that list every record at debug level 2, side by side so that they read as a table.

#include <fmt/ranges.h>

#include <utility>

#include "kiv/stream_diagnostics.h"
#include "util/time_text.h"

namespace kiv {

namespace {

// Hexadecimal numbers are listed in two's complement.
std::uint64_t bits(std::int64_t number) { return static_cast<std::uint64_t>(number); }

}  // namespace

template <class... Values>
void stream_diagnostics::list(fmt::format_string<Values...> labels, Values&&... values) {
  std::string line = fmt::format(labels, std::forward<Values>(values)...);
  line += '\n';
  err_ << line << std::flush;
}

// The line is ended by the record's own listing.
void stream_diagnostics::record_started(char tag, std::uint32_t size, std::uint32_t event_number) {
  err_ << fmt::format("tag: {} size: {} eventnr: {}", tag, size, event_number);
}

void stream_diagnostics::list_address(std::uint32_t id, std::uint32_t color, std::int64_t addr) {
  list(" id: {} color: {} addr: {}", id, color, addr);
}

void stream_diagnostics::listed(const KivMallocWF& event) {
  list_address(event.id, event.color, event.addr);
}

void stream_diagnostics::listed(const KivMallocNF& event) {
  list_address(event.id, event.color, event.addr);
}

void stream_diagnostics::listed(const KivFree& event) {
  list_address(event.id, event.color, event.addr);
}

void stream_diagnostics::listed(const KivFreeRealloc& event) {
  list_address(event.id, event.color, event.addr);
}

void stream_diagnostics::listed(const KivSbrk& event) {
  list(" addr: {:x} size: {}", bits(event.addr), event.size);
}

void stream_diagnostics::listed(const KivSbrkGap& event) {
  list(" l_sbrk: {} c_sbrk: {}", event.l_sbrk, event.c_sbrk);
}

void stream_diagnostics::listed(const KivMallInfo& event) {
  list(" arena: {} used: {} freed: {}", event.arena, event.used, event.freed);
}

void stream_diagnostics::listed(const KivTimeStamp& event) {
  list(" timestamp: {}", time_text(event.when()));
}

void stream_diagnostics::listed(const KivMarker& event) { list(" marker: {}", event.words); }

void stream_diagnostics::listed(const KivReserveId& event, std::string_view source_line) {
  list(" id: {} nr_colors: {} reserve type: {} location: {}", event.id, event.nr_colors,
       event.reserve_type, source_line);
}

void stream_diagnostics::listed(const KivReserveIdColors& event) {
  list(" color: {} color name: {}", event.color, event.colorname);
}

void stream_diagnostics::listed(const KivFreeOrReset& event, std::string_view source_line) {
  list(" id: {} location: {}", event.id, source_line);
}

void stream_diagnostics::listed(const KivHashLoc& event) {
  list(" location: {:x} MalSrc: {}", bits(event.location), event.source_line);
}

void stream_diagnostics::listed(const KivObjectLoad& event, std::string_view object_name) {
  list(" id_of_obj: {} object name: {}", event.id_of_obj, object_name);
}

void stream_diagnostics::listed(const KivFunctionName& event) {
  list(" id_of_obj: {} funnr: {} funcname: {}", event.id_of_obj, event.funnr, event.funcname);
}

void stream_diagnostics::listed(const KivProcessStart& event) {
  list(" id: {} pid: {} parent: {} session name: {}", 0, event.pid, event.parent,
       event.short_name());
}

void stream_diagnostics::listed(const KivProcessEnd& event) { list(" pid: {}", event.pid); }

void stream_diagnostics::listed(const KivProcessSpecialLoad& event) {
  list(" pid: {} special id: {} special name: {}", event.pid, event.funnr, event.funcname);
}

void stream_diagnostics::listed(const KivObjectLink& event) {
  list(" pid: {} object: {}", event.pid, event.id_of_obj);
}

void stream_diagnostics::listed(const KivSchedule& event) {
  list(" curr_pid: {} new_pid: {}", event.curr_pid, event.new_pid);
}

void stream_diagnostics::listed(const KivFlowIn& event) {
  list(" parent id: {} parent funnr: {} child id: {} child funnr: {}", event.parent_id,
       event.parent_funnr, event.child_id, event.child_funnr);
}

void stream_diagnostics::listed(const KivFlowOut& /*event*/) { list(""); }

void stream_diagnostics::listed(const KivHoskFlowIn& event) {
  list("id of obj: {}fun 3gl nr:{}funnr: {}sym: {}args: {}", event.id_of_obj, event.fun3glnr,
       event.funnr, event.sym, event.args);
}

void stream_diagnostics::listed(const KivHoskFlowOut& event) {
  list("id of obj: {}fun 3gl nr:{}funnr: {}args: {}", event.id_of_obj, event.fun3glnr, event.funnr,
       event.args);
}

void stream_diagnostics::listed(const KivQueryIn& event) {
  list(" qid: {} qtype: {} query:{}", event.qid, static_cast<char>(event.operation), event.query);
}

void stream_diagnostics::listed(const KivQueryOut& event) {
  list(" qid: {} linked_qid {}", event.qid, event.linked_qid);
}

void stream_diagnostics::listed(const KivSymbolNew& event) {
  list(" sym: {:x} symnr: {} sym_type: {}", bits(event.sym), event.symnr, event.sym_type);
}

void stream_diagnostics::listed(const KivSymbolDims& event) {
  list(" sym: {:x} nrdims: {} dims: {}", bits(event.sym), event.nrdims, fmt::join(event.dims, ","));
}

void stream_diagnostics::listed(const KivSymbolDdName& event) {
  list(" sym: {:x} dd_name: {}", bits(event.sym), event.dd_name);
}

void stream_diagnostics::listed(const KivSymbolAlloc& event) {
  list(" sym: {:x} flags: {:o} name: {}", bits(event.sym), event.flags, event.name);
}

void stream_diagnostics::function_named(std::uint32_t owner, std::int32_t number,
                                        std::string_view name) {
  err_ << fmt::format("  {} {} {}\n", owner, number, name);
}

void stream_diagnostics::object_linked(std::uint32_t pid, std::uint32_t object) {
  err_ << fmt::format(" OIP process id {} links object id {}\n", pid, object);
}

void stream_diagnostics::scheduled(std::uint32_t from_pid, std::string_view from_name,
                                   std::uint32_t to_pid, std::string_view to_name) {
  err_ << fmt::format("schedule from {} {} to {} {}\n", from_pid, from_name, to_pid, to_name);
}

void stream_diagnostics::function_entered(std::uint32_t depth, std::string_view caller,
                                          std::string_view callee) {
  err_ << fmt::format("3>{} {}->{}\n", depth, caller, callee);
}

void stream_diagnostics::function_left(std::uint32_t depth, std::string_view back_in,
                                       std::string_view left) {
  err_ << fmt::format("3<{} {}<-{}\n", depth, back_in, left);
}

void stream_diagnostics::hosk_entered(std::uint32_t depth, std::string_view function) {
  err_ << fmt::format("b>{} {}\n", depth, function);
}

void stream_diagnostics::hosk_left(std::uint32_t depth, std::string_view function) {
  err_ << fmt::format("b<{} {}\n", depth, function);
}

}  // namespace kiv
