// The listing of every event, side by side so that it reads as a table.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <utility>

#include "analysis/kiv_hashloc.h"
#include "analysis/kiv_object.h"
#include "events/code_events.h"
#include "events/heap_events.h"
#include "events/id_events.h"
#include "events/memory_events.h"
#include "events/process_events.h"
#include "events/query_events.h"
#include "events/symbol_events.h"
#include "events/time_marker_events.h"
#include "memory/kiv_reserve_id.h"
#include "reader/kiv_reader.h"
#include "settings.h"

namespace kiv {

namespace {

template <class... Values>
void list(std::ostream& os, fmt::format_string<Values...> labels, Values&&... values) {
  if (debug_level <= 1) return;
  std::string line = fmt::format(labels, std::forward<Values>(values)...);
  line += '\n';
  os << line << std::flush;
}

// Hexadecimal numbers are listed in two's complement.
std::uint64_t bits(std::int64_t number) { return static_cast<std::uint64_t>(number); }

}  // namespace

void KivEvent::traceevent(std::ostream& /*os*/) const {}

void KivMemory::trace_address(std::ostream& os, std::uint32_t id, std::uint32_t color,
                              std::int64_t addr) const {
  list(os, " id: {} color: {} addr: {}", id, color, addr);
}

void KivMallocWF::traceevent(std::ostream& os) const { trace_address(os, id, color, addr); }

void KivMallocNF::traceevent(std::ostream& os) const { trace_address(os, id, color, addr); }

void KivFree::traceevent(std::ostream& os) const { trace_address(os, id, color, addr); }

void KivFreeRealloc::traceevent(std::ostream& os) const { trace_address(os, id, color, addr); }

void KivFRID::traceevent(std::ostream& os) const { list(os, " id: {}", id_.id); }

void KivSbrk::traceevent(std::ostream& os) const {
  list(os, " addr: {:x} size: {}", bits(addr), size);
}

void KivSbrkGap::traceevent(std::ostream& os) const {
  list(os, " l_sbrk: {} c_sbrk: {}", l_sbrk, c_sbrk);
}

void KivMallInfo::traceevent(std::ostream& os) const {
  list(os, " arena: {} used: {} freed: {}", arena, used, freed);
}

void KivTimeStamp::traceevent(std::ostream& os) const { list(os, " timestamp: {}", time_text()); }

void KivMarker::traceevent(std::ostream& os) const { list(os, " marker: {}", text); }

void KivReserveId::traceevent(std::ostream& os) const {
  list(os, " id: {} nr_colors: {} reserve type: {} location: {}", id, nr_colors, reserve_type,
       reader()->hash_locations().text(location_text));
}

void KivReserveIdColors::traceevent(std::ostream& os) const {
  list(os, " color: {} color name: {}", color, colorname);
}

void KivFreeOrReset::traceevent(std::ostream& os) const {
  list(os, " id: {} location: {}", id, reader()->hash_locations().text(location_text));
}

void KivHashLoc::traceevent(std::ostream& os) const {
  list(os, " location: {:x} MalSrc: {}", bits(location), source_line);
}

void KivObjectLoad::traceevent(std::ostream& os) const {
  list(os, " id_of_obj: {} object name: {}", id_of_obj, name);
}

void KivFunctionName::traceevent(std::ostream& os) const {
  list(os, " id_of_obj: {} funnr: {} funcname: {}", id_of_obj, funnr, funcname);
}

void KivProcessStart::traceevent(std::ostream& os) const {
  list(os, " id: {} pid: {} parent: {} session name: {}", 0, pid, parent, session_name);
}

void KivProcessEnd::traceevent(std::ostream& os) const { list(os, " pid: {}", pid); }

void KivProcessSpecialLoad::traceevent(std::ostream& os) const {
  list(os, " pid: {} special id: {} special name: {}", pid, funnr, funcname);
}

void KivObjectLink::traceevent(std::ostream& os) const {
  list(os, " pid: {} object: {}", pid, id_of_obj);
}

void KivSchedule::traceevent(std::ostream& os) const {
  list(os, " curr_pid: {} new_pid: {}", curr_pid, new_pid);
}

void KivFlowIn::traceevent(std::ostream& os) const {
  list(os, " parent id: {} parent funnr: {} child id: {} child funnr: {}", parent_id, parent_funnr,
       child_id, child_funnr);
}

void KivFlowOut::traceevent(std::ostream& os) const { list(os, ""); }

void KivHoskFlowIn::traceevent(std::ostream& os) const {
  list(os, "id of obj: {}fun 3gl nr:{}funnr: {}sym: {}args: {}", id_of_obj, fun3glnr, funnr, sym,
       args);
}

void KivHoskFlowOut::traceevent(std::ostream& os) const {
  list(os, "id of obj: {}fun 3gl nr:{}funnr: {}args: {}", id_of_obj, fun3glnr, funnr, args);
}

void KivQueryIn::traceevent(std::ostream& os) const {
  list(os, " qid: {} qtype: {} query:{}", qid, static_cast<char>(type), query);
}

void KivQueryOut::traceevent(std::ostream& os) const {
  list(os, " qid: {} linked_qid {}", qid, linked_qid);
}

void KivSymbolNew::traceevent(std::ostream& os) const {
  list(os, " sym: {:x} symnr: {} sym_type: {}", bits(sym), symnr, sym_type);
}

void KivSymbolDims::traceevent(std::ostream& os) const {
  list(os, " sym: {:x} nrdims: {} dims: {}", bits(sym), nrdims, fmt::join(dims, ","));
}

void KivSymbolDdName::traceevent(std::ostream& os) const {
  list(os, " sym: {:x} dd_name: {}", bits(sym), dd_name);
}

void KivSymbolAlloc::traceevent(std::ostream& os) const {
  list(os, " sym: {:x} flags: {:o} name: {}", bits(sym), flags, name);
}

}  // namespace kiv
